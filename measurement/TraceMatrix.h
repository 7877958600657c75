// The result table of a measurement: one row a channel, one column a point.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "status/Status.h"

/// A table of doubles, row by row, with a lock for those who share it. No operation takes the lock
/// by itself, and copying copies counts and values only.
class TraceMatrix {
 public:
  TraceMatrix() = default;
  TraceMatrix(const TraceMatrix& other);
  TraceMatrix& operator=(const TraceMatrix& other);
  ~TraceMatrix() = default;

  /// Makes the table rows x columns; the values are undefined afterwards. Nothing happens when both
  /// counts are the present ones. A count below 1 leaves an empty table, both counts 0, and returns
  /// -1.
  Status Resize(std::int32_t rows, std::int32_t columns);
  /// Leaves an empty table.
  void Clear();

  [[nodiscard]] std::int32_t RowCount() const { return rows_; }
  [[nodiscard]] std::int32_t ColumnCount() const { return columns_; }
  /// The indices must lie inside the table: they are not checked.
  [[nodiscard]] double& Item(std::int32_t row, std::int32_t column) {
    return values_[Index(row, column)];
  }
  [[nodiscard]] double Item(std::int32_t row, std::int32_t column) const {
    return values_[Index(row, column)];
  }
  /// One row; empty when the table has no such row. Valid until the next Resize, Clear or
  /// assignment.
  [[nodiscard]] std::span<double> Row(std::int32_t row);
  [[nodiscard]] std::span<const double> Row(std::int32_t row) const;

  /// Reorders rows 1 to the last so that their first elements ascend; row 0 stays.
  void SortRows();
  /// Reorders columns 1 to the last so that the elements of row 0 ascend; column 0 stays.
  void SortColumns();
  /// Bilinear look-up, clamped at the edges: x is searched in column 0 (from row 1), y in row 0
  /// (from column 1). NaN for a table that holds no axis.
  [[nodiscard]] double Interpolate(double x, double y) const;

  /// The lock may be taken again by the thread that holds it.
  void Lock() { mutex_.lock(); }
  [[nodiscard]] bool TryLock() { return mutex_.try_lock(); }
  void Unlock() { mutex_.unlock(); }

 private:
  [[nodiscard]] std::size_t Index(std::int32_t row, std::int32_t column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }

  std::recursive_mutex mutex_;
  std::vector<double> values_;
  std::int32_t columns_ = 0;
  std::int32_t rows_ = 0;
};
