#include "measurement/NewDetectorMatrixConvertor.h"

#include <cmath>

namespace {

/// The level of a row, counted from 1, in files that do not carry it.
double SynthesisedLevel(std::uint32_t row) {
  return 5e6 * std::exp2(static_cast<double>(row - 1) / 16.0) / 16777216.0;
}

}  // namespace

Status CNewDetectorMatrixConvertor::Resize(std::uint32_t columns, std::uint32_t rows) {
  return target_.Resize(columns + 1, rows);
}

std::uint32_t CNewDetectorMatrixConvertor::GetRows() const { return target_.GetRows(); }

std::uint32_t CNewDetectorMatrixConvertor::GetCols() const { return target_.GetCols() - 1; }

double CNewDetectorMatrixConvertor::GetItem(std::uint32_t column, std::uint32_t row) const {
  return target_.GetItem(column + 1, row);
}

Status CNewDetectorMatrixConvertor::SetItem(std::uint32_t column, std::uint32_t row, double value) {
  return target_.SetItem(column + 1, row, value);
}

Status CNewDetectorMatrixConvertor::EndLoad(std::uint32_t /*columns*/, std::uint32_t rows) {
  if (target_.GetRows() == 0 || target_.GetCols() == 0) {
    return status::kOk;
  }
  target_.SetItem(0, 0, 0.0);
  for (std::uint32_t row = 1; row < rows; ++row) {
    target_.SetItem(0, row, SynthesisedLevel(row));
  }
  return status::kOk;
}
