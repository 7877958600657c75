#include <cstdlib>
#include <initializer_list>
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

/// What the first variable that is set tells, else a folder below the user's home.
std::filesystem::path Folder(std::initializer_list<const char*> variables, const char* below_home) {
  std::string folder;
  for (const char* variable : variables) {
    if (folder.empty()) folder = Environment(variable);
  }
  if (folder.empty()) {
    const std::string home = Environment("HOME");
    if (!home.empty()) folder = home + below_home;
  }
  return WithoutSeparator(folder);
}

/// Adds the absolute paths of a list with colons between them.
void AddFolders(std::vector<std::filesystem::path>& folders, const char* variable,
                const char* usual) {
  std::string list = Environment(variable);
  if (list.empty()) list = usual;
  std::istringstream names(list);
  for (std::string name; std::getline(names, name, ':');) {
    if (name.starts_with('/')) folders.push_back(WithoutSeparator(name));
  }
}

}  // namespace

std::vector<std::filesystem::path> CommonFilesFolders() {
  std::vector<std::filesystem::path> folders{
      Folder({"ZENTREL_COMMON_FILES", "XDG_DATA_HOME"}, "/.local/share")};
  if (!Environment("ZENTREL_COMMON_FILES").empty()) return folders;
  AddFolders(folders, "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
  return folders;
}

std::filesystem::path DocumentsFolder() {
  return Folder({"ZENTREL_DOCUMENTS", "XDG_DOCUMENTS_DIR"}, "/Documents");
}

std::vector<std::filesystem::path> SettingsFolders() {
  std::vector<std::filesystem::path> folders;
  const std::filesystem::path own = Folder({"XDG_CONFIG_HOME"}, "/.config");
  if (own.is_absolute()) folders.push_back(own);
  AddFolders(folders, "XDG_CONFIG_DIRS", "/etc/xdg");
  return folders;
}

std::filesystem::path PathFromEnvironment(const char* name) { return Environment(name); }

}  // namespace os
