#include <cstdlib>
#include <fstream>

#include "tests/server/ClassesDump.h"

const std::set<server::RegistrationScope> kScopesFoundByProgId = {
    server::RegistrationScope::kMachine, server::RegistrationScope::kUser};

namespace {

/// The text without the backslashes that the file puts before backslashes and quotes.
std::string Unescaped(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') ++i;
    plain += text[i];
  }
  return plain;
}

}  // namespace

ClassesLines DumpClasses(server::RegistrationScope scope) {
  const std::string place = scope == server::RegistrationScope::kUser
                                ? "[HKEY_CURRENT_USER\\Software\\Classes\\"
                                : "[HKEY_LOCAL_MACHINE\\Software\\Classes\\";
  ClassesLines lines;
  std::ifstream file(std::getenv("ZENTREL_REGISTRY"));
  std::string key;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[')) {
      key =
          line.starts_with(place) ? line.substr(place.size(), line.size() - place.size() - 1) : "";
      if (!key.empty()) lines.insert(key);
    } else if (!key.empty() && !line.empty()) {
      // @="text" or "name"="text"; no name here has a quote in it.
      const std::size_t equals = line.find('=');
      const std::string name = line.starts_with('@') ? "" : line.substr(1, equals - 2);
      std::string text = key;
      text.append(" ").append(name).append("=");
      lines.insert(text.append(Unescaped(line.substr(equals + 2, line.size() - equals - 3))));
    }
  }
  return lines;
}
