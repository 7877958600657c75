#include "measurement/DetectorFile.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "measurement/MatrixFile.h"
#include "measurement/MatrixText.h"
#include "measurement/NewDetectorMatrixConvertor.h"
#include "platform/os/Files.h"

namespace {

constexpr int kVersionWithoutLevels = 0;
constexpr int kVersionSigned = 3;

/// The number at the start of a version text; 0 when there is none, -1 when no integer can hold it.
int VersionNumber(std::string_view text) {
  text = Trimmed(text, " \t\v\f");
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  int version = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), version);
  return error == std::errc::result_out_of_range ? -1 : version;
}

}  // namespace

std::string GetDetectorFolder() {
  return os::CommonFilesFolder() + "\\Zentrel Shared\\Detectors\\";
}

Status LoadDetectorFile(ICustomMatrix<double>& matrix, const std::string& path,
                        std::string* header) {
  MatrixText text;
  Status result = text.Read(path);
  if (result != status::kOk) {
    return result;
  }
  const int version = VersionNumber(GetHeaderValue(text.Header(), "VERSION", "0"));
  if (version == kVersionWithoutLevels) {
    CNewDetectorMatrixConvertor with_levels(matrix);
    result = text.Fill(with_levels);
  } else if (version == kVersionSigned && text.IsSigned()) {
    result = text.Fill(matrix);
  } else {
    result = status::kInvalidFileFormat;
  }
  if (result == status::kOk && header != nullptr) {
    *header = text.Header();
  }
  return result;
}

void ConvertLevelAxisToLog10(CSimpleMatrix& matrix) {
  for (std::uint32_t row = 1; row < matrix.GetRows(); ++row) {
    matrix.SetItem(0, row, std::log10(matrix.GetItem(0, row)));
  }
}

Status LoadDetectorTable(const std::string& path, std::shared_ptr<const DetectorTable>& table) {
  CSimpleMatrix matrix;
  const Status result = LoadDetectorFile(matrix, path, nullptr);
  if (result == status::kOk) {
    ConvertLevelAxisToLog10(matrix);
    table = std::make_shared<const DetectorTable>(matrix);
  }
  return result;
}
