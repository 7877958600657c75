#include <windows.h>

#include <array>
#include <filesystem>

#include "visa/Process.h"

namespace zevisa {

std::string ProgramName() {
  std::array<wchar_t, 1024> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::u8string name = std::filesystem::path(path.data()).filename().u8string();
  return {name.begin(), name.end()};
}

Caller WhoCalls() { return {GetCurrentProcessId(), GetCurrentThreadId()}; }

}  // namespace zevisa
