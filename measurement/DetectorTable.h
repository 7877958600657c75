// A detector's calibration: the value that belongs to a frequency and a level of the detector.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "measurement/SimpleMatrix.h"

/// The calibrated value for a frequency (MHz) and a level (base-10 logarithm), bilinear between the
/// table's points and clamped at its edges. The axes may ascend or descend. NaN for a matrix
/// without an axis (less than two columns or rows); no argument makes it read outside the matrix.
double InterpolateDetector(const CSimpleMatrix& matrix, double frequency_mhz, double level);

/// A detector table laid out for many look-ups; immutable, so any number of threads may read it.
/// Every result equals InterpolateDetector's on the matrix that it was made of, bit for bit.
class DetectorTable {
 public:
  /// Holds no axis: every look-up gives NaN.
  DetectorTable() = default;
  /// The level axis of the matrix must be logarithmic already.
  explicit DetectorTable(const CSimpleMatrix& matrix);

  [[nodiscard]] double Interpolate(double frequency_mhz, double level) const;

  /// As above for one trace; the three spans have one length. Neighbouring frequencies that lie
  /// close together are found faster.
  void Interpolate(std::span<const double> frequencies_mhz, std::span<const double> levels,
                   std::span<double> values) const;

 private:
  std::vector<double> frequencies_;  // MHz
  std::vector<double> levels_;       // log10
  std::vector<double> values_;       // one run of levels_.size() values a frequency
};
