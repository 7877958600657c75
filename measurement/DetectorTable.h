// A detector's calibration: the value that belongs to a frequency and a level of the detector.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "measurement/AxisSearch.h"
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

  /// As above for the points of a trace; the three spans have one length. Fastest where
  /// neighbouring points have neighbouring frequencies.
  void Interpolate(std::span<const double> frequencies_mhz, std::span<const double> levels,
                   std::span<double> values) const;

 private:
  /// An ascending axis of finite points.
  struct Axis {
    std::vector<double> points;
    double steps_per_unit = 0.0;  // exact where the points are evenly spaced, a guess elsewhere

    [[nodiscard]] bool Assign(std::vector<double> axis_points);
    /// The point at or below x if the points are evenly spaced.
    [[nodiscard]] std::size_t Guess(double x) const;
    /// `start` is the point to look at first.
    [[nodiscard]] AxisPosition Locate(double x, std::size_t start) const;
  };

  Axis frequencies_;            // MHz
  Axis levels_;                 // log10
  std::vector<double> values_;  // one run of level values a frequency
  // A matrix whose axes are not both monotonic and finite is kept as it is: where a search ends
  // there depends on where it starts. The default object has one without an axis.
  CSimpleMatrix irregular_;
};
