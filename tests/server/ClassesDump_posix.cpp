#include <cstdlib>
#include <fstream>
#include <regex>

#include "tests/server/ClassesDump.h"

const std::set<server::RegistrationScope> kScopesFoundByProgId = {
    server::RegistrationScope::kMachine, server::RegistrationScope::kUser};

ClassesLines DumpClasses(server::RegistrationScope scope) {
  const std::string place = scope == server::RegistrationScope::kUser
                                ? "[HKEY_CURRENT_USER\\Software\\Classes\\"
                                : "[HKEY_LOCAL_MACHINE\\Software\\Classes\\";
  // @="text" or "name"="text"; no name here has a quote in it.
  static const std::regex value(R"re((?:@|"([^"]*)")="(.*)")re");
  static const std::regex escaped(R"(\\(.))");
  ClassesLines lines;
  std::ifstream file(std::getenv("ZENTREL_REGISTRY"));
  std::string key;
  std::smatch found;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[')) {
      key =
          line.starts_with(place) ? line.substr(place.size(), line.size() - place.size() - 1) : "";
      if (!key.empty()) lines.insert(key);
    } else if (!key.empty() && std::regex_match(line, found, value)) {
      lines.insert(key + " " + found[1].str() + "=" +
                   std::regex_replace(found[2].str(), escaped, "$1"));
    }
  }
  return lines;
}
