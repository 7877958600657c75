// The matrix that holds what a detector file says.
#pragma once

#include <cstdint>
#include <vector>

#include "measurement/ICustomMatrix.h"

/// A matrix of doubles, column by column. Not synchronised.
///
/// A detector file's table lies in it thus: (0, 0) is not used; (c, 0) for c >= 1 is the frequency
/// axis, MHz; (0, r) for r >= 1 the level axis; (c, r) the calibrated value for frequency c and
/// level r.
class CSimpleMatrix final : public ICustomMatrix<double> {
 public:
  /// New elements are 0. Always 0.
  Status Resize(std::uint32_t columns, std::uint32_t rows) override;
  [[nodiscard]] std::uint32_t GetRows() const override;
  [[nodiscard]] std::uint32_t GetCols() const override;
  [[nodiscard]] double GetItem(std::uint32_t column, std::uint32_t row) const override {
    return columns_[column][row];
  }
  Status SetItem(std::uint32_t column, std::uint32_t row, double value) override {
    columns_[column][row] = value;
    return Status::kOk;
  }
  /// Does nothing.
  Status EndLoad(std::uint32_t columns, std::uint32_t rows) override;

 private:
  std::vector<std::vector<double>> columns_;
};
