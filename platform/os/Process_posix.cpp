#include "platform/os/Process.h"

#include <unistd.h>

#include <fstream>

namespace os {

std::string ProgramName() {
  std::string program;
  std::ifstream file("/proc/self/comm");
  std::getline(file, program);
  return program;
}

std::uint64_t ProcessNumber() { return static_cast<std::uint64_t>(getpid()); }

// Kept a thread, as it takes a call of the system; but a fork makes another thread of this one.
std::uint64_t ThreadNumber() {
  thread_local pid_t process = 0;
  thread_local pid_t thread = 0;
  if (const pid_t own = getpid(); process != own) {
    process = own;
    thread = gettid();
  }
  return static_cast<std::uint64_t>(thread);
}

}  // namespace os
