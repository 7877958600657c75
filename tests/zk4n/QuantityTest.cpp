#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "zk4n/Quantity.h"

using namespace zk4n;

namespace {

struct ParseCase {
  const char* name;
  const char* text;
  Unit unit;
  std::optional<double> value;
};

TEST(Quantity, ReadsWhatPeopleWrite) {
  const ParseCase cases[] = {
      {"plain number", "1e9", Unit::kHertz, 1e9},
      {"prefix alone", "1G", Unit::kHertz, 1e9},
      {"prefix and unit", "1GHz", Unit::kHertz, 1e9},
      {"blank before the unit", "1 MHz", Unit::kHertz, 1e6},
      {"megahertz in lower case", "5 mhz", Unit::kHertz, 5e6},
      {"fraction", "2.4G", Unit::kHertz, 2.4e9},
      {"plus sign", "+3kHz", Unit::kHertz, 3e3},
      {"negative level", "-10dBm", Unit::kDecibelMilliwatt, -10.0},
      {"level without unit", "-10", Unit::kDecibelMilliwatt, -10.0},
      {"milliseconds", "5ms", Unit::kSecond, 5e-3},
      {"decibel step", "0.5 dB", Unit::kDecibel, 0.5},
      {"no prefix on levels", "1kdBm", Unit::kDecibelMilliwatt, std::nullopt},
      {"other unit", "1 V", Unit::kHertz, std::nullopt},
      {"seconds for hertz", "1s", Unit::kHertz, std::nullopt},
      {"rest after the unit", "1GHz1", Unit::kHertz, std::nullopt},
      {"two signs", "+-1", Unit::kHertz, std::nullopt},
      {"no number", "GHz", Unit::kHertz, std::nullopt},
      {"empty", "", Unit::kHertz, std::nullopt},
      {"not finite", "inf", Unit::kHertz, std::nullopt},
      {"not a number", "nan", Unit::kHertz, std::nullopt},
      {"overflow by the prefix", "1e308T", Unit::kHertz, std::nullopt},
  };
  for (const ParseCase& c : cases) {
    const auto value = ParseQuantity(c.text, c.unit);
    ASSERT_EQ(value.has_value(), c.value.has_value()) << c.name;
    EXPECT_DOUBLE_EQ(value.value_or(0.0), c.value.value_or(0.0)) << c.name;
  }
}

TEST(Quantity, ShowsEngineeringPrefixes) {
  EXPECT_EQ(FormatQuantity(2.4e9, Unit::kHertz), "2.4 GHz");
  EXPECT_EQ(FormatQuantity(1e6, Unit::kHertz), "1 MHz");
  EXPECT_EQ(FormatQuantity(999.0, Unit::kHertz), "999 Hz");
  EXPECT_EQ(FormatQuantity(0.0, Unit::kHertz), "0 Hz");
  EXPECT_EQ(FormatQuantity(5e-3, Unit::kSecond), "5 ms");
  EXPECT_EQ(FormatQuantity(2e-14, Unit::kSecond), "0.02 ps");
  EXPECT_EQ(FormatQuantity(-1500.0, Unit::kDecibelMilliwatt), "-1500 dBm");
  EXPECT_EQ(FormatQuantity(std::nan(""), Unit::kHertz), "nan Hz");
}

}  // namespace
