#include "visa/Process.h"

#include <unistd.h>

#include <fstream>

namespace zevisa {

std::string ProgramName() {
  std::string program;
  std::ifstream file("/proc/self/comm");
  std::getline(file, program);
  return program;
}

// The thread's number is kept, for each line of the trace asks; but a fork makes another thread of
// this one.
Caller WhoCalls() {
  thread_local pid_t process = 0;
  thread_local pid_t thread = 0;
  if (const pid_t own = getpid(); process != own) {
    process = own;
    thread = gettid();
  }
  return {static_cast<std::uint64_t>(process), static_cast<std::uint64_t>(thread)};
}

}  // namespace zevisa
