#include <windows.h>
// After windows.h.
#include <shlobj.h>

#include "platform/os/Files.h"

namespace os {
namespace {

std::string ShellFolder(int csidl) {
  wchar_t path[MAX_PATH] = {};
  if (!SHGetSpecialFolderPathW(nullptr, path, csidl, FALSE)) return {};
  return ToNarrow(path);
}

}  // namespace

std::string CommonFilesFolder() { return ShellFolder(CSIDL_PROGRAM_FILES_COMMON); }

std::string DocumentsFolder() { return ShellFolder(CSIDL_PERSONAL); }

}  // namespace os
