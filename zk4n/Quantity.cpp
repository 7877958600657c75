#include "zk4n/Quantity.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace zk4n {
namespace {

constexpr std::array<SiPrefix, 9> kPrefixes{{{"T", 1e12},
                                             {"G", 1e9},
                                             {"M", 1e6},
                                             {"k", 1e3},
                                             {"", 1.0},
                                             {"m", 1e-3},
                                             {"u", 1e-6},
                                             {"n", 1e-9},
                                             {"p", 1e-12}}};

bool TakesPrefix(Unit unit) { return unit == Unit::kHertz || unit == Unit::kSecond; }

/// Seconds are given in milli and less, hertz in kilo and more; so "5 mhz" means megahertz, as
/// whoever types it does.
bool IsPrefixFor(const SiPrefix& prefix, Unit unit) {
  return !prefix.letter.empty() &&
         (unit == Unit::kHertz ? prefix.factor > 1.0 : prefix.factor < 1.0);
}

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    if (lower(left[i]) != lower(right[i])) return false;
  }
  return true;
}

/// The factor of what follows the number; nothing when it is neither unit nor prefix.
std::optional<double> SuffixFactor(std::string_view suffix, Unit unit) {
  const std::string_view symbol = UnitSymbol(unit);
  if (suffix.empty() || EqualIgnoringCase(suffix, symbol)) return 1.0;
  if (!TakesPrefix(unit)) return std::nullopt;
  for (const SiPrefix& prefix : kPrefixes) {
    if (!IsPrefixFor(prefix, unit) || !EqualIgnoringCase(suffix.substr(0, 1), prefix.letter))
      continue;
    const std::string_view rest = suffix.substr(1);
    if (rest.empty() || EqualIgnoringCase(rest, symbol)) return prefix.factor;
  }
  return std::nullopt;
}

}  // namespace

std::string_view UnitSymbol(Unit unit) {
  switch (unit) {
    case Unit::kHertz:
      return "Hz";
    case Unit::kDecibelMilliwatt:
      return "dBm";
    case Unit::kDecibel:
      return "dB";
    case Unit::kSecond:
      return "s";
  }
  return "";
}

std::optional<double> ParseQuantity(std::string_view text, Unit unit) {
  text = Trim(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{}) return std::nullopt;
  const auto factor =
      SuffixFactor(Trim(text.substr(static_cast<std::size_t>(end - text.data()))), unit);
  if (!factor || !std::isfinite(value * *factor)) return std::nullopt;
  return value * *factor;
}

SiPrefix PrefixFor(double magnitude) {
  magnitude = std::abs(magnitude);
  if (magnitude == 0.0 || !std::isfinite(magnitude)) return {"", 1.0};
  for (const SiPrefix& prefix : kPrefixes) {
    if (magnitude >= prefix.factor * (1.0 - 1e-12)) return prefix;
  }
  return kPrefixes.back();
}

std::string FormatNumber(double value, int digits) {
  if (std::isnan(value)) return "nan";
  std::array<char, 64> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::general, digits);
  std::string text(buffer.data(), result.ptr);
  return text == "-0" ? "0" : text;
}

std::string FormatQuantity(double value, Unit unit, int digits) {
  const SiPrefix prefix = TakesPrefix(unit) ? PrefixFor(value) : SiPrefix{"", 1.0};
  return FormatNumber(value / prefix.factor, digits) + " " + std::string(prefix.letter) +
         std::string(UnitSymbol(unit));
}

}  // namespace zk4n
