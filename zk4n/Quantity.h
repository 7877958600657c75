// Quantities as people write them: "1e9", "2.4G", "10 MHz", "-10dBm", "5ms".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zk4n {

/// What a quantity measures; decides which unit text is accepted after the number.
enum class Unit { kHertz, kDecibelMilliwatt, kDecibel, kSecond };

/// "Hz", "dBm", "dB", "s".
std::string_view UnitSymbol(Unit unit);

/// Reads a number with an optional SI prefix (p n u m k M G T) and an optional unit; blanks between
/// them are allowed. Prefixes apply to hertz and seconds only. Nothing for any other text, and for
/// values that are not finite.
std::optional<double> ParseQuantity(std::string_view text, Unit unit);

/// The value with an SI prefix and the unit, for people: 2400000000 Hz is "2.4 GHz". At most
/// `digits` significant digits.
std::string FormatQuantity(double value, Unit unit, int digits = 6);

/// A number with at most so many significant digits, without an exponent where it is readable
/// without one.
std::string FormatNumber(double value, int digits = 6);

/// The SI prefix that suits a magnitude: its letter (empty for none) and its factor.
struct SiPrefix {
  std::string_view letter;
  double factor;
};
SiPrefix PrefixFor(double magnitude);

}  // namespace zk4n
