// The characteristic that the three detectors share: a diode that follows the square law at low
// level and grows linear at high level, with a sensitivity that depends mildly on the frequency.
#pragma once

#include <cstddef>
#include <vector>

namespace simulator {

/// A detector is specified between these limits.
inline constexpr double kDetectorMinLevel = -70.0;     ///< dBm
inline constexpr double kDetectorMaxLevel = 20.0;      ///< dBm
inline constexpr double kDetectorMinFrequency = 10e6;  ///< Hz
inline constexpr double kDetectorMaxFrequency = 20e9;  ///< Hz

/// The characteristic both ways. A reading is what the instrument measures before it is scaled for
/// the wire: 0 without signal, about 7.5e6 at the upper limits.
struct DetectorCurve {
  /// Level in dBm at a frequency in Hz to the reading; -infinity gives 0.
  static double Reading(double level, double frequency);
  /// Reading to dBm; 0 gives -infinity.
  static double Level(double reading, double frequency);
};

/// The characteristic as a calibration table. Bilinear interpolation over frequency and the
/// decimal logarithm of the reading gives the level to 0.02 dB within the detector's limits.
struct DetectorTable {
  std::vector<double> frequencies;  ///< MHz, ascending
  std::vector<double> readings;     ///< linear, ascending, logarithmically spaced
  std::vector<double> levels;       ///< dBm; one row of all frequencies after another

  [[nodiscard]] double At(std::size_t reading, std::size_t frequency) const {
    return levels.at(reading * frequencies.size() + frequency);
  }

  /// Two or more of each.
  static DetectorTable Make(std::size_t frequency_count = 41, std::size_t reading_count = 65);
};

}  // namespace simulator
