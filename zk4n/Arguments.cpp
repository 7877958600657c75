#include "zk4n/Arguments.h"

#include <fstream>
#include <system_error>

#include "zk4n/Commands.h"

namespace zk4n {

double QuantityArgument(const std::string& option, const std::string& text, Unit unit) {
  const auto value = ParseQuantity(text, unit);
  if (!value) {
    throw UsageError(option + ": not a value in " + std::string(UnitSymbol(unit)) + ": " + text);
  }
  return *value;
}

std::filesystem::path PathArgument(const std::string& utf8) {
  return {std::u8string(utf8.begin(), utf8.end())};
}

std::string Utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

void RequireReadable(const std::string& file) {
  std::error_code error;
  const std::filesystem::path path = PathArgument(file);
  if (!std::filesystem::is_regular_file(path, error) || !std::ifstream(path).is_open()) {
    throw UsageError("cannot read " + file);
  }
}

}  // namespace zk4n
