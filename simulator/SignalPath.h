// From the source through the device to the readings of the three detectors.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <random>

#include "simulator/DeviceUnderTest.h"

namespace simulator {

inline constexpr std::size_t kChannels = 3;  ///< A, B, R: through, reflected, reference

/// One point of the source.
struct SourcePoint {
  double frequency = 0.0;       ///< Hz, above 0
  std::optional<double> level;  ///< dBm; none while the output is off
};

class SignalPath {
 public:
  /// `noise`: dB, standard deviation at each detector.
  SignalPath(const DeviceUnderTest& device, double noise, std::uint32_t seed);

  void set_device(const DeviceUnderTest& device) { device_ = device; }

  /// Readings of A, B, R; see DetectorCurve. `averaging` measurements lie behind each, 1 or more.
  std::array<double, kChannels> Measure(const SourcePoint& point, unsigned averaging);

 private:
  DeviceUnderTest device_;
  double noise_;
  std::mt19937 random_;
  std::normal_distribution<double> distribution_;
};

/// A reading as the wire carries it: times `scale`, rounded, within 32 bits.
std::int32_t RawReading(double reading, double scale);

}  // namespace simulator
