#include <cstdlib>

#include "platform/os/Files.h"

namespace os {
namespace {

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::filesystem::path Folder(const char* variable, const char* xdg_variable,
                             const char* below_home) {
  std::string folder = Environment(variable);
  if (folder.empty()) folder = Environment(xdg_variable);
  if (folder.empty()) {
    const std::string home = Environment("HOME");
    if (!home.empty()) folder = home + below_home;
  }
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

}  // namespace

std::filesystem::path CommonFilesFolder() {
  return Folder("ZENTREL_COMMON_FILES", "XDG_DATA_HOME", "/.local/share");
}

std::filesystem::path DocumentsFolder() {
  return Folder("ZENTREL_DOCUMENTS", "XDG_DOCUMENTS_DIR", "/Documents");
}

}  // namespace os
