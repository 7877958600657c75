#include "zk4n/DetectorValues.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>

#include "measurement/DetectorLevel.h"
#include "zk4n/Commands.h"

namespace zk4n {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::optional<double> ParseDecimal(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

/// Cuts the first word off.
std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  return word;
}

}  // namespace

double DetectorValue(const measurement::DetectorTable& table, const DetectorPoint& point) {
  return table.Interpolate(point.frequency_mhz, measurement::DetectorLevel(point.level));
}

double DecimalArgument(const std::string& what, const std::string& text) {
  const std::optional<double> value = ParseDecimal(text);
  if (!value) throw UsageError(what + ": not a number: " + text);
  return *value;
}

void ForEachDetectorPoint(std::istream& lines,
                          const std::function<void(const DetectorPoint& point)>& take) {
  std::string line;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    std::string_view rest = line;
    const std::string_view first = TakeWord(rest);
    if (first.empty()) continue;
    const std::optional<double> frequency = ParseDecimal(first);
    const std::optional<double> level = ParseDecimal(TakeWord(rest));
    if (!frequency || !level || !TakeWord(rest).empty()) {
      throw UsageError("standard input, line " + std::to_string(number) +
                       ": not a frequency and a level");
    }
    take({*frequency, *level});
  }
}

}  // namespace zk4n
