#include <windows.h>

#include <stdexcept>

#include "platform/os/Text.h"
#include "tests/zk4n/Program.h"

namespace {

HANDLE OpenForOutput(const std::filesystem::path& file) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                     CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

Program::Program(const std::filesystem::path& file, const std::vector<std::string>& arguments,
                 const std::filesystem::path& folder)
    : output_(folder / "stdout.txt"), errors_(folder / "stderr.txt") {
  std::wstring command = L"\"" + file.wstring() + L"\"";
  for (const std::string& argument : arguments) {
    command += L" \"" + std::wstring(os::ToWide(argument, os::kUtf8CodePage)) + L"\"";
  }
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  HANDLE writing_end = nullptr;
  CreatePipe(&startup.hStdInput, &writing_end, nullptr, 0);
  SetHandleInformation(startup.hStdInput, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
  input_ = reinterpret_cast<std::intptr_t>(writing_end);
  startup.hStdOutput = OpenForOutput(output_);
  startup.hStdError = OpenForOutput(errors_);
  PROCESS_INFORMATION info{};
  // A console of its own, without a window, so that Ctrl-C reaches it alone.
  const bool started = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE,
                                      CREATE_NO_WINDOW, nullptr, nullptr, &startup, &info) != 0;
  for (const HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError}) {
    CloseHandle(handle);
  }
  if (!started) {
    CloseInput();
    throw std::runtime_error("cannot start " + file.string());
  }
  CloseHandle(info.hThread);
  process_ = reinterpret_cast<std::intptr_t>(info.hProcess);
}

Program::~Program() {
  CloseInput();
  if (process_ == 0) return;
  const auto handle = reinterpret_cast<HANDLE>(process_);
  TerminateProcess(handle, 1);
  WaitForSingleObject(handle, INFINITE);
  CloseHandle(handle);
}

std::optional<int> Program::Wait(std::chrono::milliseconds time) {
  const auto handle = reinterpret_cast<HANDLE>(process_);
  if (WaitForSingleObject(handle, static_cast<DWORD>(time.count())) != WAIT_OBJECT_0) {
    return std::nullopt;
  }
  DWORD status = 0;
  GetExitCodeProcess(handle, &status);
  CloseHandle(handle);
  process_ = 0;
  return static_cast<int>(status);
}

void Program::Interrupt() {
  FreeConsole();
  AttachConsole(GetProcessId(reinterpret_cast<HANDLE>(process_)));
  SetConsoleCtrlHandler(nullptr, TRUE);  // not for the sender
  GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
  Sleep(100);
  FreeConsole();
  SetConsoleCtrlHandler(nullptr, FALSE);
}

void Program::Write(std::string_view bytes) {
  const auto handle = reinterpret_cast<HANDLE>(input_);
  DWORD written = 0;
  while (!bytes.empty() && WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()),
                                     &written, nullptr) != 0) {
    bytes.remove_prefix(written);
  }
}

void Program::CloseInput() {
  if (input_ != 0) CloseHandle(reinterpret_cast<HANDLE>(input_));
  input_ = 0;
}
