#include "measurement/MatrixFile.h"

#include <array>
#include <charconv>
#include <cmath>
#include <fstream>

#include "measurement/Gost341194.h"
#include "measurement/MatrixText.h"
#include "platform/os/Files.h"

namespace {

bool AllFinite(const ICustomMatrix<double>& matrix) {
  for (std::uint32_t row = 0; row < matrix.GetRows(); ++row) {
    for (std::uint32_t column = 0; column < matrix.GetCols(); ++column) {
      if (!std::isfinite(matrix.GetItem(column, row))) {
        return false;
      }
    }
  }
  return true;
}

std::string RowText(const ICustomMatrix<double>& matrix, std::uint32_t row) {
  constexpr int kSignificantDigits = 13;
  std::string text;
  for (std::uint32_t column = 0; column < matrix.GetCols(); ++column) {
    std::array<char, 32> digits;
    const auto [end, error] =
        std::to_chars(digits.begin(), digits.end(), matrix.GetItem(column, row),
                      std::chars_format::general, kSignificantDigits);
    if (column != 0) {
      text += '\t';
    }
    text.append(digits.begin(), end);
  }
  return text;
}

}  // namespace

Status LoadMatrixFile(ICustomMatrix<double>* matrix, const std::string& path, std::string* header,
                      std::uint32_t flags) {
  MatrixText text;
  const Status result = text.Read(path);
  if (result != status::kOk) {
    return result;
  }
  const bool check_digest = (flags & kMatrixFileDigest) != 0;
  if (check_digest && !text.IsSigned()) {
    return status::kInvalidFileFormat;
  }
  if (header != nullptr) {
    *header = check_digest ? text.SignedHeader() : text.Header();
  }
  return matrix != nullptr ? text.Fill(*matrix) : status::kOk;
}

Status SaveMatrixFile(const ICustomMatrix<double>& matrix, const std::string& path,
                      std::string_view header, std::uint32_t flags) {
  if (!AllFinite(matrix)) {
    return status::kInvalidValue;
  }
  std::ofstream file = os::OpenForWriting(path);
  if (!file.is_open()) {
    return status::kCannotOpenFile;
  }
  Gost341194 hash;
  LineReader header_lines(header);
  std::string_view line;
  while (header_lines.Next(line)) {
    if (!line.starts_with(kDigestMark)) {
      file << line << '\n';
      hash.Update(line);
    }
  }
  for (std::uint32_t row = 0; row < matrix.GetRows(); ++row) {
    const std::string text = RowText(matrix, row);
    file << text << '\n';
    hash.Update(text);
  }
  if ((flags & kMatrixFileDigest) != 0) {
    file << '\n' << kDigestMark << ' ' << ToHexText(hash.Finish());
  }
  file.close();
  return file ? status::kOk : status::kCannotOpenFile;
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
