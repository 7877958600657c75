// The dates that an instrument tells of itself.
#pragma once

#include <cstdint>
#include <string_view>

namespace k4n {

/// Calendar date of the identity record; all zero when unknown.
struct IdentityDate {
  std::uint16_t year = 0;
  std::uint8_t month = 0;
  std::uint8_t day = 0;
  [[nodiscard]] bool IsKnown() const { return year != 0 || month != 0 || day != 0; }
  /// For comparing dates: year x 65536 + month x 256 + day.
  [[nodiscard]] std::uint32_t Ordinal() const {
    return (static_cast<std::uint32_t>(year) << 16) + (static_cast<std::uint32_t>(month) << 8) +
           day;
  }
};

struct IdentityRecord {
  IdentityDate manufactured;
  IdentityDate fpga_firmware;
  IdentityDate dsp_program;
};

/// Reads "day.month.year" or the compiler's "Mmm dd yyyy"; zero when the text is not a date. Kept:
/// a date in December is never accepted.
IdentityDate ParseIdentityDate(std::string_view text);

/// Finds the dates in the text of the identity record, Windows-1251. If the text begins with a
/// date, that is the date of manufacture and the only date.
IdentityRecord ParseIdentityRecord(std::string_view text);

}  // namespace k4n
