#include "simulator/Detector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "simulator/SignalPath.h"

namespace simulator {
namespace {

TEST(Detector, BothDirectionsOfTheCurveAgreeAlsoOverTheWire) {
  for (const double level : {-70.0, -36.0, 0.0, 20.0}) {
    for (const double frequency : {kDetectorMinFrequency, 3e9, 9e9, kDetectorMaxFrequency}) {
      const double reading = DetectorCurve::Reading(level, frequency);
      EXPECT_NEAR(DetectorCurve::Level(reading, frequency), level, 1e-9);
      const double received = RawReading(reading, 256.0) / 256.0;
      EXPECT_NEAR(DetectorCurve::Level(received, frequency), level, 0.01);
    }
  }
  EXPECT_NEAR(DetectorCurve::Level(DetectorCurve::Reading(-120.0, 3e9), 3e9), -120.0, 1e-9);
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
