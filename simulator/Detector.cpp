#include "simulator/Detector.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace simulator {

namespace {

// Power in milliwatts p = v + kBend v^2 with v = reading / kScale: square law (v follows the power)
// below about -36 dBm, linear (v follows the voltage) above. The scale leaves a reading of 4 at
// -70 dBm, where one count of 1/256 is 0.004 dB, and keeps 256 readings within 31 bits at +20 dBm.
constexpr double kScale = 4e7;
constexpr double kBend = 4000.0;

// The table's axis of readings: a little beyond the detector's limits on both sides.
constexpr double kFirstReading = 2.0;
constexpr double kLastReading = 8.3e6;

// Sensitivity in dB: a slow ripple and a loss towards the upper end.
double Sensitivity(double frequency) {
  const double share = frequency / kDetectorMaxFrequency;
  return 0.8 * std::sin(2.0 * std::numbers::pi * share) - share;
}

double Interpolate(double first, double last, std::size_t index, std::size_t count) {
  return first + (last - first) * static_cast<double>(index) / static_cast<double>(count - 1);
}

}  // namespace

double DetectorCurve::Reading(double level, double frequency) {
  const double power = std::pow(10.0, (level + Sensitivity(frequency)) / 10.0);
  // The positive root of kBend v^2 + v - p, in the form that does not cancel for small p.
  return kScale * 2.0 * power / (1.0 + std::sqrt(1.0 + 4.0 * kBend * power));
}

double DetectorCurve::Level(double reading, double frequency) {
  const double v = std::max(reading, 0.0) / kScale;
  return 10.0 * std::log10(v + kBend * v * v) - Sensitivity(frequency);
}

DetectorTable DetectorTable::Make(std::size_t frequency_count, std::size_t reading_count) {
  DetectorTable table;
  for (std::size_t i = 0; i < frequency_count; ++i) {
    const double frequency =
        Interpolate(kDetectorMinFrequency, kDetectorMaxFrequency, i, frequency_count);
    table.frequencies.push_back(frequency / 1e6);
  }
  for (std::size_t i = 0; i < reading_count; ++i) {
    const double decade =
        Interpolate(std::log10(kFirstReading), std::log10(kLastReading), i, reading_count);
    table.readings.push_back(std::pow(10.0, decade));
  }
  for (const double reading : table.readings) {
    for (const double megahertz : table.frequencies) {
      table.levels.push_back(DetectorCurve::Level(reading, megahertz * 1e6));
    }
  }
  return table;
}

}  // namespace simulator
