#include <cstdlib>
#include <sstream>

#include "platform/os/Files.h"

namespace os {
namespace {

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::filesystem::path WithoutSeparator(std::string folder) {
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

std::filesystem::path Folder(const char* variable, const char* xdg_variable,
                             const char* below_home) {
  std::string folder = Environment(variable);
  if (folder.empty()) folder = Environment(xdg_variable);
  if (folder.empty()) {
    const std::string home = Environment("HOME");
    if (!home.empty()) folder = home + below_home;
  }
  return WithoutSeparator(folder);
}

}  // namespace

std::vector<std::filesystem::path> CommonFilesFolders() {
  std::vector<std::filesystem::path> folders{
      Folder("ZENTREL_COMMON_FILES", "XDG_DATA_HOME", "/.local/share")};
  if (!Environment("ZENTREL_COMMON_FILES").empty()) return folders;
  std::string list = Environment("XDG_DATA_DIRS");
  if (list.empty()) list = "/usr/local/share:/usr/share";
  std::istringstream names(list);
  for (std::string name; std::getline(names, name, ':');) {
    if (name.starts_with('/')) folders.push_back(WithoutSeparator(name));
  }
  return folders;
}

std::filesystem::path DocumentsFolder() {
  return Folder("ZENTREL_DOCUMENTS", "XDG_DOCUMENTS_DIR", "/Documents");
}

}  // namespace os
