// Finding the place of a value on an axis of a table.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace measurement {

/// The two neighbours of a value on an axis and the share of the first one (the second has the
/// rest).
struct AxisPosition {
  std::size_t first = 0;
  std::size_t second = 0;
  double weight = 0.5;
};

/// The weight of the first of two points for x; 0.5 if they are the same point or equal.
constexpr double AxisWeight(double x, double first, double second) {
  return first == second ? 0.5 : (second - x) / (second - first);
}

/// The point of an axis, 0 to count - 1, nearest to a place estimated in steps from its start.
/// Anything that is not a number becomes 0.
constexpr std::size_t ClampToAxis(double steps, std::size_t count) {
  const double last = static_cast<double>(count - 1);
  return steps > 0.0 ? static_cast<std::size_t>(std::min(steps + 0.5, last)) : 0;
}

/// Finds x on the axis at(0) .. at(count - 1), count >= 1, ascending or descending; beyond an end
/// both neighbours are that end. NaN gives the weight NaN. On an axis that is not monotonic or
/// contains NaN the result has no meaning, but always is a pair of points of the axis.
template <typename At>
AxisPosition FindOnAxis(std::size_t count, const At& at, double x) {
  if (std::isnan(x)) return {0, 0, x};
  const std::size_t last = count - 1;
  const double head = at(0);
  const double tail = at(last);
  const bool ascending = tail >= head;
  if (ascending ? x >= tail : x <= tail) return {last, last, 0.5};
  if (ascending ? x <= head : x >= head) return {0, 0, 0.5};
  std::size_t k = ClampToAxis(static_cast<double>(last) * ((x - head) / (tail - head)), count);
  std::size_t next = k;
  if (ascending) {
    while (k > 0 && at(k) > x) --k;
    while (k < last && x >= at(k + 1)) ++k;
    next = std::min(k + 1, last);
  } else {
    while (k < last && at(k) > x) ++k;
    while (k > 0 && x >= at(k - 1)) --k;
    next = k > 0 ? k - 1 : 0;
  }
  return {k, next, AxisWeight(x, at(k), at(next))};
}

/// Bilinear combination of the four values at(i, j) around a place of a table.
template <typename At>
double Bilinear(const AxisPosition& x, const AxisPosition& y, const At& at) {
  return x.weight * (y.weight * at(x.first, y.first) + (1 - y.weight) * at(x.first, y.second)) +
         (1 - x.weight) *
             (y.weight * at(x.second, y.first) + (1 - y.weight) * at(x.second, y.second));
}

}  // namespace measurement
