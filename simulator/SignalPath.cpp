#include "simulator/SignalPath.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "simulator/Detector.h"

namespace simulator {

SignalPath::SignalPath(const DeviceUnderTest& device, double noise, std::uint32_t seed)
    : device_(device), noise_(noise), random_(seed) {}

std::array<double, kChannels> SignalPath::Measure(const SourcePoint& point, unsigned averaging) {
  std::array<double, kChannels> readings{};
  if (!point.level) return readings;
  const std::array<double, kChannels> responses{device_.Through(point.frequency),
                                                device_.Reflected(point.frequency), 0.0};
  for (std::size_t channel = 0; channel < kChannels; ++channel) {
    double level = *point.level + responses.at(channel);
    if (noise_ > 0.0) {
      level += distribution_(random_) * noise_ / std::sqrt(static_cast<double>(averaging));
    }
    readings.at(channel) = DetectorCurve::Reading(level, point.frequency);
  }
  return readings;
}

std::int32_t RawReading(double reading, double scale) {
  constexpr double kLargest = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(std::round(reading * scale), 0.0, kLargest));
}

}  // namespace simulator
