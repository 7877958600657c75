// Reads detector files of version 0, which have no level column.
#pragma once

#include <cstdint>

#include "measurement/ICustomMatrix.h"

/// An adapter that inserts a level column in front of a target matrix: its own column c is the
/// target's column c + 1. The target is not owned and must outlive the adapter.
class CNewDetectorMatrixConvertor final : public ICustomMatrix<double> {
 public:
  explicit CNewDetectorMatrixConvertor(ICustomMatrix<double>& target) : target_(target) {}

  Status Resize(std::uint32_t columns, std::uint32_t rows) override;
  [[nodiscard]] std::uint32_t GetRows() const override;
  [[nodiscard]] std::uint32_t GetCols() const override;
  [[nodiscard]] double GetItem(std::uint32_t column, std::uint32_t row) const override;
  Status SetItem(std::uint32_t column, std::uint32_t row, double value) override;
  /// Fills the level column: it starts at 5e6 / 2^24 in row 1 and doubles every 16 rows.
  Status EndLoad(std::uint32_t columns, std::uint32_t rows) override;

 private:
  ICustomMatrix<double>& target_;
};
