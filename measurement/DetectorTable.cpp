#include "measurement/DetectorTable.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "measurement/AxisSearch.h"

double InterpolateDetector(const CSimpleMatrix& matrix, double frequency_mhz, double level) {
  const std::uint32_t columns = matrix.GetCols();
  const std::uint32_t rows = matrix.GetRows();
  if (columns < 2 || rows < 2) {
    return std::numeric_limits<double>::quiet_NaN();
  }
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

/// Takes the points when they are finite and ascend (equal neighbours allowed).
bool DetectorTable::Axis::Assign(std::vector<double> axis_points) {
  const bool finite = std::all_of(axis_points.begin(), axis_points.end(),
                                  [](double point) { return std::isfinite(point); });
  if (!finite || !std::is_sorted(axis_points.begin(), axis_points.end())) {
    return false;
  }
  points = std::move(axis_points);
  const double range = points.back() - points.front();
  steps_per_unit = range > 0.0 ? static_cast<double>(points.size() - 1) / range : 0.0;
  return true;
}

std::size_t DetectorTable::Axis::Guess(double x) const {
  const double steps = (x - points.front()) * steps_per_unit;
  return steps > 0.0
             ? static_cast<std::size_t>(std::min(steps, static_cast<double>(points.size() - 1)))
             : 0;
}

AxisPosition DetectorTable::Axis::Locate(double x, std::size_t start) const {
  const std::size_t last = points.size() - 1;
  if (x >= points[last]) {
    return {last, last, 0.5};
  }
  if (x <= points[0]) {
    return {0, 0, 0.5};
  }
  std::size_t k = start;
  if (k >= last || !(points[k] <= x && x < points[k + 1])) {
    const auto above = std::upper_bound(points.begin(), points.end(), x);
    k = static_cast<std::size_t>(above - points.begin()) - 1;
  }
  const std::size_t next = std::min(k + 1, last);
  // The two points differ here, so NaN is the only x that can end without a weight.
  return {k, next, (points[next] - x) / (points[next] - points[k])};
}

DetectorTable::DetectorTable(const CSimpleMatrix& matrix) {
  const std::uint32_t columns = matrix.GetCols();
  const std::uint32_t rows = matrix.GetRows();
  if (columns < 2 || rows < 2) {
    return;
  }
  // A descending axis is turned round together with its values: the search then meets the same pair
  // of points, and gives the first of them the same weight.
  const bool columns_descend = matrix.GetItem(columns - 1, 0) < matrix.GetItem(1, 0);
  const bool rows_descend = matrix.GetItem(0, rows - 1) < matrix.GetItem(0, 1);
  const auto column_of = [=](std::uint32_t i) { return columns_descend ? columns - 1 - i : i + 1; };
  const auto row_of = [=](std::uint32_t j) { return rows_descend ? rows - 1 - j : j + 1; };
  std::vector<double> frequency_points(columns - 1);
  for (std::uint32_t i = 0; i < columns - 1; ++i) {
    frequency_points[i] = matrix.GetItem(column_of(i), 0);
  }
  std::vector<double> level_points(rows - 1);
  for (std::uint32_t j = 0; j < rows - 1; ++j) {
    level_points[j] = matrix.GetItem(0, row_of(j));
  }
  if (!frequencies_.Assign(std::move(frequency_points)) ||
      !levels_.Assign(std::move(level_points))) {
    irregular_ = matrix;
    return;
  }
  values_.reserve(std::size_t{columns - 1} * (rows - 1));
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
  const std::size_t run = levels_.points.size();
  AxisPosition frequency;
  double located = std::numeric_limits<double>::quiet_NaN();  // differs from every frequency
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (frequencies_mhz[i] != located) {
      located = frequencies_mhz[i];
      frequency = frequencies_.Locate(located, frequency.first);
    }
    const AxisPosition level = levels_.Locate(levels[i], levels_.Guess(levels[i]));
    values[i] = Bilinear(frequency, level,
                         [&](std::size_t f, std::size_t l) { return values_[f * run + l]; });
  }
}
