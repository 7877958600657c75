#include "measurement/DetectorTable.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "measurement/AxisSearch.h"

namespace measurement {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

double InterpolateDetector(const CSimpleMatrix& matrix, double frequency_mhz, double level) {
  const std::uint32_t columns = matrix.GetCols();
  const std::uint32_t rows = matrix.GetRows();
  if (columns < 2 || rows < 2) return std::numeric_limits<double>::quiet_NaN();
  const auto item = [&matrix](std::size_t column, std::size_t row) {
    return matrix.GetItem(static_cast<std::uint32_t>(column), static_cast<std::uint32_t>(row));
  };
  const AxisPosition frequency = FindOnAxis(
      columns - 1, [&item](std::size_t k) { return item(k + 1, 0); }, frequency_mhz);
  const AxisPosition height = FindOnAxis(
      rows - 1, [&item](std::size_t k) { return item(0, k + 1); }, level);
  return Bilinear(frequency, height,
                  [&item](std::size_t i, std::size_t j) { return item(i + 1, j + 1); });
}

bool DetectorTable::Axis::Assign(const std::vector<double>& points) {
  const bool finite =
      std::all_of(points.begin(), points.end(), [](double point) { return std::isfinite(point); });
  if (!finite || !std::is_sorted(points.begin(), points.end())) return false;
  const std::size_t last = points.size() - 1;
  const double back = points.back();
  const double range = back - points.front();
  front_ = points.front();
  steps_per_unit_ = range > 0.0 ? static_cast<double>(last) / range : 0.0;
  // An end point belongs to the interval beyond it, the last point first.
  const double above_front = std::nextafter(front_, kInfinity);
  intervals_.reserve(points.size() + 1);
  intervals_.push_back({-kInfinity, std::min(above_front, back), 0.0, 0, 0});
  for (std::size_t k = 0; k < last; ++k) {
    intervals_.push_back(
        {std::max(points[k], above_front), points[k + 1], points[k + 1] - points[k], k, k + 1});
  }
  intervals_.push_back({back, kInfinity, 0.0, last, last});
  return true;
}

inline const DetectorTable::Interval& DetectorTable::Axis::Find(double x) const {
  const double steps = (x - front_) * steps_per_unit_ + 1.0;
  const auto last = static_cast<double>(intervals_.size() - 1);
  const std::size_t guess = steps > 1.0 ? static_cast<std::size_t>(std::min(steps, last)) : 0;
  return intervals_[guess].Holds(x) ? intervals_[guess] : Search(x);
}

const DetectorTable::Interval& DetectorTable::Axis::Search(double x) const {
  static constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  static constexpr Interval kNowhere = {kNan, kNan, kNan, 0, 0};
  if (std::isnan(x)) return kNowhere;
  const auto found =
      std::partition_point(intervals_.begin(), std::prev(intervals_.end()),
                           [x](const Interval& interval) { return interval.to <= x; });
  return *found;
}

DetectorTable::DetectorTable(const CSimpleMatrix& matrix) {
  const std::uint32_t columns = matrix.GetCols();
  const std::uint32_t rows = matrix.GetRows();
  if (columns < 2 || rows < 2) return;
  // A descending axis is reversed together with its values: a search then finds the same pair of
  // points with the same weights.
  const bool columns_descend = matrix.GetItem(columns - 1, 0) < matrix.GetItem(1, 0);
  const bool rows_descend = matrix.GetItem(0, rows - 1) < matrix.GetItem(0, 1);
  const auto column_of = [=](std::uint32_t i) { return columns_descend ? columns - 1 - i : i + 1; };
  const auto row_of = [=](std::uint32_t j) { return rows_descend ? rows - 1 - j : j + 1; };
  std::vector<double> frequency_points(columns - 1);
  for (std::uint32_t i = 0; i < columns - 1; ++i) {
    frequency_points[i] = matrix.GetItem(column_of(i), 0);
  }
  std::vector<double> level_points(rows - 1);
  for (std::uint32_t j = 0; j < rows - 1; ++j) level_points[j] = matrix.GetItem(0, row_of(j));
  if (!frequencies_.Assign(frequency_points) || !levels_.Assign(level_points)) {
    irregular_ = matrix;
    return;
  }
  level_count_ = rows - 1;
  values_.reserve((columns - 1) * level_count_);
  for (std::uint32_t i = 0; i < columns - 1; ++i) {
    for (std::uint32_t j = 0; j < rows - 1; ++j) {
      values_.push_back(matrix.GetItem(column_of(i), row_of(j)));
    }
  }
}

double DetectorTable::Interpolate(double frequency_mhz, double level) const {
  double value = 0.0;
  Interpolate({&frequency_mhz, 1}, {&level, 1}, {&value, 1});
  return value;
}

void DetectorTable::Interpolate(std::span<const double> frequencies_mhz,
                                std::span<const double> levels, std::span<double> values) const {
  if (values_.empty()) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = InterpolateDetector(irregular_, frequencies_mhz[i], levels[i]);
    }
    return;
  }
  const Interval* column = &frequencies_.Find(std::numeric_limits<double>::quiet_NaN());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!column->Holds(frequencies_mhz[i])) column = &frequencies_.Find(frequencies_mhz[i]);
    const Interval& row = levels_.Find(levels[i]);
    const AxisPosition frequency = {column->first, column->second,
                                    column->Weight(frequencies_mhz[i])};
    const AxisPosition level = {row.first, row.second, row.Weight(levels[i])};
    values[i] = Bilinear(frequency, level, [this](std::size_t f, std::size_t l) {
      return values_[f * level_count_ + l];
    });
  }
}

}  // namespace measurement
