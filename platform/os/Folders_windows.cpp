#include <windows.h>
// After windows.h.
#include <shlobj.h>

#include <cstring>
#include <utility>

#include "platform/os/Files.h"

namespace os {
namespace {

std::filesystem::path ShellFolder(int csidl) {
  wchar_t path[MAX_PATH] = {};
  if (!SHGetSpecialFolderPathW(nullptr, path, csidl, FALSE)) return {};
  return path;
}

}  // namespace

std::vector<std::filesystem::path> CommonFilesFolders() {
  return {ShellFolder(CSIDL_PROGRAM_FILES_COMMON)};
}

std::filesystem::path DocumentsFolder() { return ShellFolder(CSIDL_PERSONAL); }

std::vector<std::filesystem::path> SettingsFolders() {
  std::vector<std::filesystem::path> folders;
  for (const int csidl : {CSIDL_APPDATA, CSIDL_COMMON_APPDATA}) {
    if (auto folder = ShellFolder(csidl); !folder.empty()) folders.push_back(std::move(folder));
  }
  return folders;
}

std::filesystem::path PathFromEnvironment(const char* name) {
  const std::wstring wide(name, name + std::strlen(name));
  std::wstring value(GetEnvironmentVariableW(wide.c_str(), nullptr, 0), L'\0');
  const DWORD size =
      GetEnvironmentVariableW(wide.c_str(), value.data(), static_cast<DWORD>(value.size()));
  value.resize(size < value.size() ? size : 0);  // it has grown meanwhile
  return value;
}

}  // namespace os
