// The text of a matrix file, read once: the readers of MatrixFile.h and DetectorFile.h ask it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "measurement/ICustomMatrix.h"
#include "status/Status.h"

namespace measurement {

/// The characters that surround the content of a line.
inline constexpr std::string_view kLineMargin = " \r\n";
/// What a digest line begins with; the digest follows behind one more character.
inline constexpr std::string_view kDigestMark = "#CRC";

/// Without the given characters at both ends.
std::string_view Trimmed(std::string_view text, std::string_view margin = kLineMargin);

/// True for a line that belongs to the header.
bool IsHeaderLine(std::string_view trimmed_line);

/// Takes a text apart into its lines, trimmed; empty ones are skipped.
class LineReader {
 public:
  /// The text must outlive the reader.
  explicit LineReader(std::string_view text) : rest_(text) {}
  /// False at the end of the text.
  bool Next(std::string_view& line);

 private:
  std::string_view rest_;
};

/// Appends the numbers of a data line to `numbers`, up to the first token that is not a finite
/// decimal.
void ParseNumbers(std::string_view line, std::vector<double>& numbers);

class MatrixText {
 public:
  /// Reads a whole file. Returns 0, 0x80047002 when it cannot be opened or is no regular file, or
  /// 0x8004705C when it has no numbers, rows of different lengths, or more than a gibibyte.
  /// `is_signed` decides by the header in front of the numbers whether the digest will be needed;
  /// it is then computed in parallel.
  Status Read(const std::filesystem::path& path,
              bool (*is_signed)(const std::string& header) = nullptr);

  // The functions below are valid for any file, good or not.

  /// False for a file that is empty, too large, or cannot be opened.
  [[nodiscard]] bool HasContent() const { return !text_.empty(); }
  /// The count of numbers in the first data line; 0 when there is none.
  [[nodiscard]] std::uint32_t Columns() const { return columns_; }
  /// The count of data lines.
  [[nodiscard]] std::uint32_t Rows() const { return rows_; }
  /// The first data line (counted from 1) with another count of numbers than the line before; 0 if
  /// there is none.
  [[nodiscard]] std::uint32_t UnevenRow() const { return uneven_row_; }
  [[nodiscard]] bool HasDigest() const { return has_digest_; }
  [[nodiscard]] bool DataFollowsDigest() const { return data_follows_digest_; }
  /// What the first digest line says; empty without one.
  [[nodiscard]] const std::string& StoredDigest() const { return stored_digest_; }
  /// The digest of the lines in front of the digest line, or of all lines without one.
  [[nodiscard]] std::string ComputedDigest() const;
  /// True if the digest is right for the lines in front of it, and only header lines follow.
  [[nodiscard]] bool IsSigned() const;
  /// All header lines, joined by "\n".
  [[nodiscard]] const std::string& Header() const { return header_; }
  /// The header lines in front of the digest line.
  [[nodiscard]] std::string_view SignedHeader() const;
  /// Stores all numbers; only of a file that was good.
  Status Fill(ICustomMatrix<double>& matrix) const;

 private:
  template <typename OnFirstData>
  void Parse(OnFirstData&& on_first_data);
  void TakeHeaderLine(std::string_view line);
  void TakeDataLine(std::string_view line);

  std::string text_;
  std::string header_;
  std::vector<double> numbers_;  ///< row by row
  std::uint32_t columns_ = 0;
  std::uint32_t rows_ = 0;
  std::uint32_t uneven_row_ = 0;
  std::string stored_digest_;
  std::string early_digest_;  ///< empty: computed when it is needed
  bool has_digest_ = false;
  std::size_t signed_header_size_ = 0;  ///< of header_, when there is a digest line
  bool data_follows_digest_ = false;
};

}  // namespace measurement
