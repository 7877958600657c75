#include "measurement/SimpleMatrix.h"

Status CSimpleMatrix::Resize(std::uint32_t columns, std::uint32_t rows) {
  if (GetCols() == columns && GetRows() == rows) return Status::kOk;
  columns_.assign(columns, std::vector<double>(rows));
  return Status::kOk;
}

std::uint32_t CSimpleMatrix::GetRows() const {
  return columns_.empty() ? 0 : static_cast<std::uint32_t>(columns_.front().size());
}

std::uint32_t CSimpleMatrix::GetCols() const { return static_cast<std::uint32_t>(columns_.size()); }

Status CSimpleMatrix::EndLoad(std::uint32_t /*columns*/, std::uint32_t /*rows*/) {
  return Status::kOk;
}
