#include "measurement/DetectorLevel.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

using namespace measurement;

namespace {

TEST(Log10, IsTheNearestNumberOrItsNeighbour) {
  std::mt19937_64 random(20);
  std::uint64_t checksum = 0;
  for (int i = 0; i < 200000; ++i) {
    const double mantissa = static_cast<double>(random() >> 11) * 0x1p-53 + 0.5;
    const double x = std::ldexp(mantissa, i % 2 == 0 ? 0 : static_cast<int>(random() % 60) - 30);
    const double result = Log10(x);
    const double nearest = static_cast<double>(std::log10(static_cast<long double>(x)));
    ASSERT_LE(std::abs(std::bit_cast<std::int64_t>(result) - std::bit_cast<std::int64_t>(nearest)),
              1)
        << x << ": " << result << " against " << nearest;
    checksum = std::rotl(checksum, 1) ^ std::bit_cast<std::uint64_t>(result);
  }
  EXPECT_EQ(checksum, 12526616115990788285U) << "a system that gives other bits than the others";
}

TEST(Log10, IsExactWhereItCanBe) {
  double power = 1.0;
  for (int exponent = 0; exponent <= 22; ++exponent, power *= 10.0) {
    EXPECT_EQ(Log10(power), exponent);
  }
  EXPECT_EQ(Log10(0.0), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(Log10(std::numeric_limits<double>::infinity()),
            std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(Log10(-1.0)));
  EXPECT_DOUBLE_EQ(Log10(std::numeric_limits<double>::denorm_min()), -323.30621534311580);
}

TEST(DetectorLevels, AreThoseOfEachReading) {
  std::vector<double> readings;
  for (int i = -10; i < 190; ++i) readings.push_back(i * 0.0005);
  std::vector<double> levels = readings;
  DetectorLevels(levels);
  for (std::size_t i = 0; i < readings.size(); ++i) {
    EXPECT_EQ(levels[i], DetectorLevel(readings[i])) << readings[i];
    EXPECT_EQ(levels[i], readings[i] <= 0.001 ? -3.0 : Log10(readings[i])) << readings[i];
  }
}

}  // namespace
