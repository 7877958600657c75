// Tables as tests write and show them: the rows of a detector file, the numbers of each.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "measurement/SimpleMatrix.h"

using Rows = std::vector<std::vector<double>>;

inline Rows RowsOf(const ICustomMatrix<double>& matrix) {
  Rows rows(matrix.GetRows(), std::vector<double>(matrix.GetCols()));
  for (std::uint32_t row = 0; row < matrix.GetRows(); ++row) {
    for (std::uint32_t column = 0; column < matrix.GetCols(); ++column) {
      rows[row][column] = matrix.GetItem(column, row);
    }
  }
  return rows;
}

inline CSimpleMatrix MatrixOf(const Rows& rows) {
  CSimpleMatrix matrix;
  matrix.Resize(static_cast<std::uint32_t>(rows.at(0).size()),
                static_cast<std::uint32_t>(rows.size()));
  for (std::uint32_t row = 0; row < matrix.GetRows(); ++row) {
    for (std::uint32_t column = 0; column < matrix.GetCols(); ++column) {
      matrix.SetItem(column, row, rows[row].at(column));
    }
  }
  return matrix;
}

/// Whether two results have the same bits, or neither is a number.
inline bool IsSame(double a, double b) {
  return std::isnan(a) ? std::isnan(b)
                       : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}
