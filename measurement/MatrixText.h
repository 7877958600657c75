// The text of a matrix file, read once: the readers of MatrixFile.h and DetectorFile.h ask it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "measurement/ICustomMatrix.h"
#include "measurement/Status.h"

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
  /// Reads a whole file. Returns 0, 0x80047002 when it cannot be opened, or 0x8004705C when it has
  /// no numbers, rows of different lengths, or more than a gibibyte.
  Status Read(const std::string& path);

  /// True when the digest line is that of the lines in front of it, and only header lines follow
  /// it.
  [[nodiscard]] bool IsSigned() const;
  /// All header lines, joined by "\n".
  [[nodiscard]] const std::string& Header() const { return header_; }
  /// The header lines in front of the digest line.
  [[nodiscard]] std::string_view SignedHeader() const;
  /// Stores all numbers.
  Status Fill(ICustomMatrix<double>& matrix) const;

 private:
  [[nodiscard]] bool Parse();
  [[nodiscard]] bool TakeDataLine(std::string_view line);

  std::string text_;
  std::string header_;
  std::vector<double> numbers_;  // row by row
  std::uint32_t columns_ = 0;
  std::uint32_t rows_ = 0;
  bool has_digest_ = false;
  std::size_t signed_header_size_ = 0;  // of header_, when there is a digest line
  bool data_follows_digest_ = false;
};
