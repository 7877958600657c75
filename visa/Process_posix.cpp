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

std::uint64_t ProcessNumber() { return static_cast<std::uint64_t>(getpid()); }

std::uint64_t ThreadNumber() { return static_cast<std::uint64_t>(gettid()); }

}  // namespace zevisa
