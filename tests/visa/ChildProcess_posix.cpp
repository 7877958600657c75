#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "tests/visa/ChildProcess.h"

ChildProcess::ChildProcess(const std::string& program, const std::string& argument) {
  std::string name = program;
  std::string parameter = argument;
  const std::array<char*, 3> arguments = {name.data(), parameter.data(), nullptr};
  pid_t pid = 0;
  if (posix_spawn(&pid, name.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
    throw std::runtime_error("cannot start " + program);
  }
  process_ = pid;
  id_ = static_cast<unsigned long>(pid);
}

void ChildProcess::Kill() {
  if (process_ == 0) return;
  kill(static_cast<pid_t>(process_), SIGKILL);
  waitpid(static_cast<pid_t>(process_), nullptr, 0);
  process_ = 0;
}
