#include "measurement/MatrixText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <future>
#include <optional>
#include <system_error>
#include <utility>

#include "measurement/Gost341194.h"
#include "platform/os/Files.h"

namespace measurement {

namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 30;
constexpr std::string_view kLineStartsOfHeaders = "!#[";
/// From this size on, digesting takes far longer than starting a thread.
constexpr std::size_t kWorthAThread = 256 << 10;

/// White space within a line.
constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

/// A whole token as a decimal that may have a decimal comma or a leading plus sign.
bool ParseUnusualNumber(std::string token, double& value) {
  std::replace(token.begin(), token.end(), ',', '.');
  const bool has_plus = token.size() > 1 && token[0] == '+' && token[1] != '-';
  const char* begin = token.data() + (has_plus ? 1 : 0);
  const char* end = token.data() + token.size();
  const auto [stop, error] = std::from_chars(begin, end, value);
  return error == std::errc() && stop == end && std::isfinite(value);
}

/// The digest of a text's lines up to the digest line.
std::string DigestOf(std::string_view text) {
  Gost341194 hash;
  LineReader lines(text);
  std::string_view line;
  while (lines.Next(line) && !line.starts_with(kDigestMark)) hash.Update(line);
  return ToHexText(hash.Finish());
}

}  // namespace

std::string_view Trimmed(std::string_view text, std::string_view margin) {
  const std::size_t begin = text.find_first_not_of(margin);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(margin) - begin + 1);
}

bool IsHeaderLine(std::string_view trimmed_line) {
  return !trimmed_line.empty() &&
         kLineStartsOfHeaders.find(trimmed_line.front()) != std::string_view::npos;
}

bool LineReader::Next(std::string_view& line) {
  while (!rest_.empty()) {
    const std::size_t length = std::min(rest_.find('\n'), rest_.size());
    line = Trimmed(rest_.substr(0, length));
    rest_.remove_prefix(std::min(length + 1, rest_.size()));
    if (!line.empty()) return true;
  }
  return false;
}

void ParseNumbers(std::string_view line, std::vector<double>& numbers) {
  const char* position = line.data();
  const char* const end = position + line.size();
  while (true) {
    position = std::find_if_not(position, end, IsBlank);
    if (position == end) return;
    double value = 0.0;
    const auto [stop, error] = std::from_chars(position, end, value);
    if (error == std::errc() && (stop == end || IsBlank(*stop))) {
      if (!std::isfinite(value)) return;
      position = stop;
    } else {
      const char* const token_end = std::find_if(position, end, IsBlank);
      if (!ParseUnusualNumber({position, token_end}, value)) return;
      position = token_end;
    }
    numbers.push_back(value);
  }
}

template <typename OnFirstData>
void MatrixText::Parse(OnFirstData&& on_first_data) {
  bool has_data = false;
  LineReader lines(text_);
  std::string_view line;
  while (lines.Next(line)) {
    if (IsHeaderLine(line)) {
      TakeHeaderLine(line);
    } else {
      if (!std::exchange(has_data, true)) on_first_data();
      data_follows_digest_ = has_digest_;
      TakeDataLine(line);
    }
  }
}

Status MatrixText::Read(const std::filesystem::path& path,
                        bool (*is_signed)(const std::string& header)) {
  std::optional<std::string> content = os::ReadWholeFile(path, kLargestFile);
  if (!content) return Status::kCannotOpenFile;
  text_ = std::move(*content);
  // The digest takes several times as long as reading the numbers: for a large file both run in
  // parallel.
  std::future<std::string> digest;
  Parse([&] {
    if (is_signed != nullptr && text_.size() >= kWorthAThread && is_signed(header_)) {
      digest = std::async(DigestOf, std::string_view(text_));
    }
  });
  if (digest.valid()) early_digest_ = digest.get();
  return rows_ != 0 && uneven_row_ == 0 ? Status::kOk : Status::kInvalidFileFormat;
}

void MatrixText::TakeHeaderLine(std::string_view line) {
  if (!has_digest_ && line.starts_with(kDigestMark)) {
    has_digest_ = true;
    signed_header_size_ = header_.size();
    if (line.size() > kDigestMark.size()) {
      stored_digest_ = Trimmed(line.substr(kDigestMark.size() + 1));
    }
  }
  if (!header_.empty()) header_ += '\n';
  header_ += line;
}

void MatrixText::TakeDataLine(std::string_view line) {
  const std::size_t before = numbers_.size();
  ParseNumbers(line, numbers_);
  const std::size_t count = numbers_.size() - before;
  if (count == 0) return;
  if (rows_ == 0) {
    columns_ = static_cast<std::uint32_t>(count);
    numbers_.reserve(std::min(count * (text_.size() / line.size() + 1), text_.size() / 2 + 1));
  }
  ++rows_;
  if (count != columns_ && uneven_row_ == 0) uneven_row_ = rows_;
}

std::string MatrixText::ComputedDigest() const {
  return early_digest_.empty() ? DigestOf(text_) : early_digest_;
}

bool MatrixText::IsSigned() const {
  return has_digest_ && !data_follows_digest_ && stored_digest_ == ComputedDigest();
}

std::string_view MatrixText::SignedHeader() const {
  return has_digest_ ? std::string_view(header_).substr(0, signed_header_size_) : header_;
}

Status MatrixText::Fill(ICustomMatrix<double>& matrix) const {
  Status result = matrix.Resize(columns_, rows_);
  if (result == Status::kOk) result = matrix.EndLoad(columns_, rows_);
  const double* number = numbers_.data();
  for (std::uint32_t row = 0; row < rows_ && result == Status::kOk; ++row) {
    for (std::uint32_t column = 0; column < columns_; ++column) {
      Discard(matrix.SetItem(column, row, *number++));  // inside the matrix: always 0
    }
  }
  return result;
}

}  // namespace measurement
