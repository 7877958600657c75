// A detector's calibration: the value that belongs to a frequency and a level of the detector.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "measurement/SimpleMatrix.h"

namespace measurement {

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
  /// A part of an axis, from <= x < to, that uses one pair of points.
  struct Interval {
    double from;
    double to;     ///< the axis value of the second point too, where the points differ
    double width;  ///< between the two points; 0 beyond an end of the axis (one point)
    std::size_t first;
    std::size_t second;

    [[nodiscard]] bool Holds(double x) const { return from <= x && x < to; }
    /// The share of the first point.
    [[nodiscard]] double Weight(double x) const { return width == 0.0 ? 0.5 : (to - x) / width; }
  };

  /// An ascending axis of finite points.
  class Axis {
   public:
    /// Takes the points, at least one, when they are finite and ascend (equal neighbours allowed).
    [[nodiscard]] bool Assign(const std::vector<double>& points);
    /// The interval that contains x; for NaN any interval, whose weight is NaN.
    [[nodiscard]] const Interval& Find(double x) const;

   private:
    [[nodiscard]] const Interval& Search(double x) const;

    std::vector<Interval> intervals_;  ///< ascending; one before the first point, one a point
    double front_ = 0.0;
    double steps_per_unit_ = 0.0;  ///< exact where the points are evenly spaced, a guess elsewhere
  };

  Axis frequencies_;  ///< MHz
  Axis levels_;       ///< log10
  std::size_t level_count_ = 0;
  std::vector<double> values_;  ///< one run of level values a frequency
  /// Used if an axis is not monotonic or not finite: there the result of a search depends on its
  /// start, so the matrix is searched as it is. Empty in the default object.
  CSimpleMatrix irregular_;
};

}  // namespace measurement
