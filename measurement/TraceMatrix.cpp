#include "measurement/TraceMatrix.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "measurement/AxisSearch.h"

using namespace measurement;

namespace {

/// The indices 0 .. keys.size() - 1 with the first one in its place and the others ordered by their
/// keys; what is not a number comes last.
std::vector<std::size_t> AscendingOrder(const std::vector<double>& keys) {
  std::vector<std::size_t> order(keys.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin() + 1, order.end(), [&keys](std::size_t a, std::size_t b) {
    return keys[a] < keys[b] || (!std::isnan(keys[a]) && std::isnan(keys[b]));
  });
  return order;
}

}  // namespace

TraceMatrix::TraceMatrix(const TraceMatrix& other)
    : values_(other.values_), columns_(other.columns_), rows_(other.rows_) {}

TraceMatrix& TraceMatrix::operator=(const TraceMatrix& other) {
  values_ = other.values_;
  columns_ = other.columns_;
  rows_ = other.rows_;
  return *this;
}

Status TraceMatrix::Resize(std::int32_t rows, std::int32_t columns) {
  if (rows == rows_ && columns == columns_) return Status::kOk;
  Clear();
  if (rows < 1 || columns < 1) return Status::kRefused;
  values_.resize(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns));
  rows_ = rows;
  columns_ = columns;
  return Status::kOk;
}

void TraceMatrix::Clear() {
  values_ = {};
  rows_ = 0;
  columns_ = 0;
}

std::span<double> TraceMatrix::Row(std::int32_t row) {
  if (row < 0 || row >= rows_) return {};
  return {&Item(row, 0), static_cast<std::size_t>(columns_)};
}

std::span<const double> TraceMatrix::Row(std::int32_t row) const {
  if (row < 0 || row >= rows_) return {};
  return {&values_[Index(row, 0)], static_cast<std::size_t>(columns_)};
}

void TraceMatrix::SortRows() {
  if (values_.empty()) return;
  std::vector<double> keys;
  keys.reserve(static_cast<std::size_t>(rows_));
  for (std::int32_t row = 0; row < rows_; ++row) keys.push_back(Item(row, 0));
  const auto width = static_cast<std::size_t>(columns_);
  std::vector<double> sorted;
  sorted.reserve(values_.size());
  for (const std::size_t row : AscendingOrder(keys)) {
    const auto begin = values_.begin() + static_cast<std::ptrdiff_t>(row * width);
    sorted.insert(sorted.end(), begin, begin + static_cast<std::ptrdiff_t>(width));
  }
  values_ = std::move(sorted);
}

void TraceMatrix::SortColumns() {
  if (values_.empty()) return;
  const std::span<const double> first = Row(0);
  const std::vector<std::size_t> order = AscendingOrder({first.begin(), first.end()});
  std::vector<double> sorted;
  sorted.reserve(values_.size());
  for (std::int32_t row = 0; row < rows_; ++row) {
    const std::span<const double> source = Row(row);
    for (const std::size_t column : order) sorted.push_back(source[column]);
  }
  values_ = std::move(sorted);
}

double TraceMatrix::Interpolate(double x, double y) const {
  if (rows_ < 2 || columns_ < 2) return std::numeric_limits<double>::quiet_NaN();
  const auto item = [this](std::size_t row, std::size_t column) {
    return Item(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
  };
  const AxisPosition place_x = FindOnAxis(
      static_cast<std::size_t>(rows_ - 1), [&](std::size_t k) { return item(k + 1, 0); }, x);
  const AxisPosition place_y = FindOnAxis(
      static_cast<std::size_t>(columns_ - 1), [&](std::size_t k) { return item(0, k + 1); }, y);
  return Bilinear(place_x, place_y,
                  [&](std::size_t i, std::size_t j) { return item(i + 1, j + 1); });
}
