// The interface through which a file reader fills a matrix.
#pragma once

#include <cstdint>

#include "status/Status.h"

/// A matrix of columns by rows. Column index: position of a number within a line of the file; row
/// index: the number's data line; both from 0. The order of the virtual operations is part of the
/// interface.
template <typename T>
class ICustomMatrix {
 public:
  /// Makes the matrix columns x rows; what it held is lost unless both sizes match already.
  virtual Status Resize(std::uint32_t columns, std::uint32_t rows) = 0;
  [[nodiscard]] virtual std::uint32_t GetRows() const = 0;
  [[nodiscard]] virtual std::uint32_t GetCols() const = 0;
  /// The indices must lie inside the matrix: they are not checked.
  [[nodiscard]] virtual T GetItem(std::uint32_t column, std::uint32_t row) const = 0;
  /// The indices must lie inside the matrix: they are not checked.
  virtual Status SetItem(std::uint32_t column, std::uint32_t row, T value) = 0;
  /// Called once after Resize, before the values are stored; lets an adapter prepare derived data.
  virtual Status EndLoad(std::uint32_t columns, std::uint32_t rows) = 0;

 protected:
  ~ICustomMatrix() = default;
};
