#include "measurement/MatrixFile.h"

#include <array>
#include <charconv>
#include <cmath>
#include <fstream>

#include "measurement/Gost341194.h"
#include "measurement/MatrixText.h"
#include "platform/os/Files.h"

namespace measurement {

namespace {

bool AllFinite(const ICustomMatrix<double>& matrix) {
  for (std::uint32_t row = 0; row < matrix.GetRows(); ++row) {
    for (std::uint32_t column = 0; column < matrix.GetCols(); ++column) {
      if (!std::isfinite(matrix.GetItem(column, row))) return false;
    }
  }
  return true;
}

/// The value with 13 significant digits, or with 17 if it must be exact and needs them.
void AppendNumber(std::string& text, double value, bool exact) {
  std::array<char, 32> digits;
  char* const begin = digits.data();
  const auto write = [&](int significant) {
    constexpr auto kFormat = std::chars_format::general;
    return std::to_chars(begin, begin + digits.size(), value, kFormat, significant).ptr;
  };
  char* end = write(13);
  double read_back = 0.0;
  std::from_chars(begin, end, read_back);
  if (exact && read_back != value) end = write(17);
  text.append(begin, end);
}

std::string RowText(const ICustomMatrix<double>& matrix, std::uint32_t row, bool exact) {
  std::string text;
  for (std::uint32_t column = 0; column < matrix.GetCols(); ++column) {
    if (column != 0) text += '\t';
    AppendNumber(text, matrix.GetItem(column, row), exact);
  }
  return text;
}

}  // namespace

Status LoadMatrixFile(ICustomMatrix<double>* matrix, const std::filesystem::path& path,
                      std::string* header, std::uint32_t flags) {
  MatrixText text;
  const Status result = text.Read(path);
  if (result != Status::kOk) return result;
  const bool check_digest = (flags & kMatrixFileDigest) != 0;
  if (check_digest && !text.IsSigned()) return Status::kInvalidFileFormat;
  if (header != nullptr) *header = check_digest ? text.SignedHeader() : text.Header();
  return matrix != nullptr ? text.Fill(*matrix) : Status::kOk;
}

Status ComposeMatrixFile(const ICustomMatrix<double>& matrix, std::string_view header,
                         std::uint32_t flags, std::string& text) {
  if (!AllFinite(matrix)) return Status::kInvalidValue;
  text.clear();
  Gost341194 hash;
  const auto add_line = [&](std::string_view line) {
    text += line;
    text += '\n';
    hash.Update(line);
  };
  LineReader header_lines(header);
  std::string_view line;
  while (header_lines.Next(line)) {
    if (!line.starts_with(kDigestMark)) add_line(line);
  }
  for (std::uint32_t row = 0; row < matrix.GetRows(); ++row) {
    add_line(RowText(matrix, row, (flags & kMatrixFileExact) != 0));
  }
  if ((flags & kMatrixFileDigest) != 0) {
    text += '\n';
    text += kDigestMark;
    text += ' ' + ToHexText(hash.Finish());
  }
  return Status::kOk;
}

Status SaveMatrixFile(const ICustomMatrix<double>& matrix, const std::filesystem::path& path,
                      std::string_view header, std::uint32_t flags) {
  std::string text;
  const Status result = ComposeMatrixFile(matrix, header, flags, text);
  if (result != Status::kOk) return result;
  std::ofstream file = os::OpenForWriting(path);
  file << text;
  file.close();
  return file ? Status::kOk : Status::kCannotOpenFile;
}

std::string GetHeaderValue(std::string_view header, std::string_view key,
                           std::string_view default_value) {
  LineReader lines(header);
  std::string_view line;
  while (lines.Next(line)) {
    if (line.front() == '#' && line.substr(1).starts_with(key)) {
      return std::string(Trimmed(line.substr(1 + key.size())));
    }
  }
  return std::string(default_value);
}

}  // namespace measurement
