// Text files that hold one matrix of numbers, with header lines and, if wanted, a digest line.
//
// Lines are trimmed of blanks and line ends; empty ones do not count. A line that begins with "!",
// "#" or "[" is a header line, any other a data line: decimals separated by white space, "," read
// as ".". Numbers are read up to the first token that is not a finite decimal; a line without a
// number is ignored. The process locale plays no part.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "measurement/ICustomMatrix.h"
#include "status/Status.h"

namespace measurement {

/// Bits of the `flags` arguments.
inline constexpr std::uint32_t kMatrixFileDigest = 1;  ///< check, or write, the digest line
inline constexpr std::uint32_t kMatrixFileExact = 2;   ///< write numbers that read back exactly

/// Reads a file into a matrix. `matrix` may be null: the file is only checked; `header` may be
/// null, else it receives the header lines, joined by "\n" (with the digest check only those in
/// front of the digest line). Nothing is stored in either unless the file is good. Returns 0;
/// 0x80047002 when the file cannot be opened; 0x8004705C when it has no numbers, rows of different
/// lengths, or, with kMatrixFileDigest, a digest line that is missing or wrong, or anything but
/// header lines after it.
Status LoadMatrixFile(ICustomMatrix<double>* matrix, const std::filesystem::path& path,
                      std::string* header, std::uint32_t flags);

/// Composes a file: the header lines, without those that begin with "#CRC", then the rows, values
/// separated by tabs and with 13 significant digits. kMatrixFileExact gives more digits to a value
/// that needs them; kMatrixFileDigest ends the file with a digest line.
/// Returns 0, or 0x80047010, leaving `text` alone, when a value is not finite.
Status ComposeMatrixFile(const ICustomMatrix<double>& matrix, std::string_view header,
                         std::uint32_t flags, std::string& text);

/// Writes a composed file. Returns 0; 0x80047002 when the file cannot be created or written;
/// 0x80047010, leaving the file alone, when a value is not finite.
Status SaveMatrixFile(const ICustomMatrix<double>& matrix, const std::filesystem::path& path,
                      std::string_view header, std::uint32_t flags);

/// The value of the first header line that begins with "#" immediately followed by `key`: the rest
/// of the line, trimmed. `default_value` when there is none.
std::string GetHeaderValue(std::string_view header, std::string_view key,
                           std::string_view default_value);

}  // namespace measurement
