#include "simulator/Detector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "simulator/SignalPath.h"

namespace simulator {
namespace {

// Bilinear look-up, with the decimal logarithm of the reading on the level axis.
double LookUp(const DetectorTable& table, double megahertz, double reading) {
  const auto bracket = [](const std::vector<double>& axis, double x) {
    const auto above = std::upper_bound(axis.begin(), axis.end(), x);
    const auto index = static_cast<std::size_t>(above - axis.begin());
    return std::clamp<std::size_t>(index, 1, axis.size() - 1) - 1;
  };
  const std::size_t f = bracket(table.frequencies, megahertz);
  const std::size_t r = bracket(table.readings, reading);
  const double u =
      (megahertz - table.frequencies[f]) / (table.frequencies[f + 1] - table.frequencies[f]);
  const double v = std::log10(reading / table.readings[r]) /
                   std::log10(table.readings[r + 1] / table.readings[r]);
  return (1 - v) * ((1 - u) * table.At(r, f) + u * table.At(r, f + 1)) +
         v * ((1 - u) * table.At(r + 1, f) + u * table.At(r + 1, f + 1));
}

TEST(Detector, TableGivesTheLevelBackWithinItsAccuracy) {
  const DetectorTable table = DetectorTable::Make();
  double worst = 0.0;
  for (double frequency = kDetectorMinFrequency; frequency <= kDetectorMaxFrequency;
       frequency += 93.7e6) {
    for (double level = kDetectorMinLevel; level <= kDetectorMaxLevel; level += 0.09) {
      const double counts = DetectorCurve::Reading(level, frequency) * 256.0;
      ASSERT_LT(counts, std::numeric_limits<std::int32_t>::max()) << level << " dBm";
      const double reading = RawReading(DetectorCurve::Reading(level, frequency), 256.0) / 256.0;
      worst = std::max(worst, std::abs(LookUp(table, frequency / 1e6, reading) - level));
    }
  }
  EXPECT_LT(worst, 0.02);
}

TEST(Detector, BothDirectionsOfTheCurveAgree) {
  for (const double level : {-120.0, -70.0, -36.0, 0.0, 20.0}) {
    EXPECT_NEAR(DetectorCurve::Level(DetectorCurve::Reading(level, 3e9), 3e9), level, 1e-9);
  }
  EXPECT_EQ(DetectorCurve::Reading(-std::numeric_limits<double>::infinity(), 3e9), 0.0);
}

TEST(Detector, AnUncalibratedTraceWouldBeOff) {
  const double low = DetectorCurve::Level(DetectorCurve::Reading(0.0, 1e9), 19e9);
  EXPECT_GT(std::abs(low), 0.5) << "the sensitivity does not depend on the frequency";
}

TEST(RawReading, StaysWithin32Bits) {
  EXPECT_EQ(RawReading(1e12, 256.0), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(RawReading(-1.0, 256.0), 0);
  EXPECT_EQ(RawReading(1.0, 256.0), 256);
}

TEST(SignalPath, OutputOffGivesNoReading) {
  SignalPath path({}, 1.0, 1);
  EXPECT_EQ(path.Measure({1e9, std::nullopt}, 1), (std::array<double, 3>{0.0, 0.0, 0.0}));
}

TEST(SignalPath, NoiseRepeatsWithItsSeedAndShrinksWithAveraging) {
  const auto spread = [](unsigned averaging) {
    SignalPath path({DeviceKind::kFlat}, 1.0, 7);
    double squares = 0.0;
    for (int i = 0; i < 2000; ++i) {
      const double level =
          DetectorCurve::Level(path.Measure({1e9, -10.0}, averaging).at(2), 1e9) + 10.0;
      squares += level * level / 2000;
    }
    return std::sqrt(squares);
  };
  EXPECT_EQ(spread(1), spread(1));
  EXPECT_NEAR(spread(1), 1.0, 0.1);
  EXPECT_NEAR(spread(4), 0.5, 0.05);
}

}  // namespace
}  // namespace simulator
