#include <windows.h>
// After windows.h.
#include <shlobj.h>

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

}  // namespace os
