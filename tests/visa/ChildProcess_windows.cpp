#include <windows.h>

#include <stdexcept>

#include "tests/visa/ChildProcess.h"

ChildProcess::ChildProcess(const std::string& program, const std::string& argument) {
  std::string command = "\"" + program + "\" " + argument;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &info)) {
    throw std::runtime_error("cannot start " + program);
  }
  CloseHandle(info.hThread);
  process_ = reinterpret_cast<std::intptr_t>(info.hProcess);
  id_ = info.dwProcessId;
}

void ChildProcess::Kill() {
  if (process_ == 0) return;
  const auto handle = reinterpret_cast<HANDLE>(process_);
  TerminateProcess(handle, 1);
  WaitForSingleObject(handle, INFINITE);
  CloseHandle(handle);
  process_ = 0;
}
