#include "measurement/DetectorFile.h"

#include <charconv>
#include <system_error>

#include "measurement/DetectorLevel.h"
#include "measurement/MatrixFile.h"
#include "measurement/NewDetectorMatrixConvertor.h"
#include "platform/os/Files.h"

namespace measurement {

namespace {

/// The number at the start of a version text; 0 when there is none, nothing when no integer can
/// hold it.
std::optional<int> VersionNumber(std::string_view text) {
  text = Trimmed(text, " \t\v\f");
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  int version = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), version);
  return error == std::errc::result_out_of_range ? std::nullopt : std::optional<int>(version);
}

/// What the header of a file says.
std::optional<int> VersionOf(const std::string& header) {
  return VersionNumber(GetHeaderValue(header, "VERSION", "0"));
}

}  // namespace

std::vector<std::filesystem::path> GetDetectorFolders() {
  std::vector<std::filesystem::path> folders = os::CommonFilesFolders();
  for (std::filesystem::path& folder : folders) folder += "\\Zentrel Shared\\Detectors\\";
  return folders;
}

DetectorFile::Fault DetectorFile::Read(const std::filesystem::path& path) {
  const Status read = text_.Read(
      path, [](const std::string& header) { return VersionOf(header) == kVersionSigned; });
  if (text_.HasContent()) version_ = VersionOf(text_.Header());
  fault_ = FindFault(read);
  return fault_;
}

DetectorFile::Fault DetectorFile::FindFault(Status read) const {
  if (read == Status::kCannotOpenFile) return Fault::kCannotOpen;
  if (text_.Rows() == 0) return Fault::kNoNumbers;
  if (text_.UnevenRow() != 0) return Fault::kUnevenRows;
  if (version_ == kVersionWithoutLevels) return Fault::kNone;
  if (version_ != kVersionSigned) return Fault::kUnknownVersion;
  if (!text_.HasDigest()) return Fault::kNoDigest;
  if (text_.DataFollowsDigest()) return Fault::kDataBehindDigest;
  return text_.IsSigned() ? Fault::kNone : Fault::kWrongDigest;
}

Status DetectorFile::ReadStatus() const {
  switch (fault_) {
    case Fault::kNone:
      return Status::kOk;
    case Fault::kCannotOpen:
      return Status::kCannotOpenFile;
    default:
      return Status::kInvalidFileFormat;
  }
}

bool DetectorFile::HasTable() const {
  return text_.Rows() != 0 && text_.UnevenRow() == 0 &&
         (version_ == kVersionWithoutLevels || version_ == kVersionSigned);
}

Status DetectorFile::Fill(ICustomMatrix<double>& matrix) const {
  if (version_ == kVersionWithoutLevels) {
    CNewDetectorMatrixConvertor with_levels(matrix);
    return text_.Fill(with_levels);
  }
  return text_.Fill(matrix);
}

Status LoadDetectorFile(ICustomMatrix<double>& matrix, const std::filesystem::path& path,
                        std::string* header) {
  DetectorFile file;
  file.Read(path);
  Status result = file.ReadStatus();
  if (result == Status::kOk) result = file.Fill(matrix);
  if (result == Status::kOk && header != nullptr) *header = file.Text().Header();
  return result;
}

void ConvertLevelAxisToLog10(CSimpleMatrix& matrix) {
  for (std::uint32_t row = 1; row < matrix.GetRows(); ++row) {
    Discard(matrix.SetItem(0, row, Log10(matrix.GetItem(0, row))));  // always 0
  }
}

Status LoadDetectorTable(const std::filesystem::path& path,
                         std::shared_ptr<const DetectorTable>& table) {
  CSimpleMatrix matrix;
  const Status result = LoadDetectorFile(matrix, path, nullptr);
  if (result == Status::kOk) {
    ConvertLevelAxisToLog10(matrix);
    table = std::make_shared<const DetectorTable>(matrix);
  }
  return result;
}

}  // namespace measurement
