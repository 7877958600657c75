#include "measurement/NewDetectorMatrixConvertor.h"

#include <array>
#include <cmath>

namespace {

/// The level of a row, counted from 1, in files that do not carry it.
double SynthesisedLevel(std::uint32_t row) {
  // 2^(k / 16) as constants: std::pow differs between systems in the last bit.
  constexpr std::array<double, 16> kSixteenthsOfAnOctave{1.0,
                                                         1.0442737824274138,
                                                         1.0905077326652577,
                                                         1.1387886347566916,
                                                         1.189207115002721,
                                                         1.241857812073484,
                                                         1.2968395546510096,
                                                         1.3542555469368927,
                                                         1.4142135623730951,
                                                         1.4768261459394993,
                                                         1.5422108254079407,
                                                         1.6104903319492543,
                                                         1.681792830507429,
                                                         1.7562521603732995,
                                                         1.8340080864093424,
                                                         1.9152065613971474};
  const std::uint32_t steps = row - 1;
  const double factor = std::ldexp(kSixteenthsOfAnOctave[steps % 16], static_cast<int>(steps / 16));
  return 5e6 * factor / 16777216.0;
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
  if (target_.GetRows() == 0 || target_.GetCols() == 0) return Status::kOk;
  // An item inside the matrix can always be set.
  Discard(target_.SetItem(0, 0, 0.0));
  for (std::uint32_t row = 1; row < rows; ++row) {
    Discard(target_.SetItem(0, row, SynthesisedLevel(row)));
  }
  return Status::kOk;
}
