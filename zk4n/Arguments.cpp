#include "zk4n/Arguments.h"

#include <system_error>

#include "zk4n/Commands.h"

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

std::ifstream OpenArgument(const std::string& file) {
  std::error_code error;
  const std::filesystem::path path = PathArgument(file);
  if (!std::filesystem::is_regular_file(path, error)) return {};
  return std::ifstream(path, std::ios::binary);
}

void RequireReadable(const std::string& file) {
  if (!OpenArgument(file).is_open()) throw UsageError("cannot read " + file);
}
