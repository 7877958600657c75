#include <windows.h>

#include <array>
#include <filesystem>

#include "platform/os/Process.h"

namespace os {

std::string ProgramName() {
  std::array<wchar_t, 1024> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::u8string name = std::filesystem::path(path.data()).filename().u8string();
  return {name.begin(), name.end()};
}

std::uint64_t ProcessNumber() { return GetCurrentProcessId(); }

std::uint64_t ThreadNumber() { return GetCurrentThreadId(); }

}  // namespace os
