#include "K4NHardWare/IdentityDate.h"

#include <cstddef>

namespace k4n {

namespace {

// Windows-1251.
constexpr std::string_view kManufacturedKey =
    "\xC8\xE7\xE3\xEE\xF2\xEE\xE2\xEB\xE5\xED ";  // "Изготовлен "
constexpr std::string_view kDspKey =
    "\xCF\xF0\xEE\xE3\xF0\xE0\xEC\xEC\xE0 DSP \xEE\xF2 ";  // "Программа DSP от "
constexpr std::string_view kFpgaKey =
    "\xCF\xF0\xEE\xF8\xE8\xE2\xEA\xE0 \xCF\xCB\xC8\xD1 \xEE\xF2 ";  // "Прошивка ПЛИС от "

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Numbers of a date before they are checked.
struct DateNumbers {
  std::uint16_t year = 0;
  std::uint16_t month = 0;
  std::uint16_t day = 0;
};

/// Takes the leading run of digits, modulo 65536.
std::uint16_t TakeNumber(std::string_view& text) {
  std::uint16_t number = 0;
  while (!text.empty() && IsDigit(text.front())) {
    number = static_cast<std::uint16_t>(number * 10 + (text.front() - '0'));
    text.remove_prefix(1);
  }
  return number;
}

/// Takes "." when a digit follows it.
bool TakePoint(std::string_view& text) {
  if (text.size() < 2 || text[0] != '.' || !IsDigit(text[1])) return false;
  text.remove_prefix(1);
  return true;
}

DateNumbers ParsePointedDate(std::string_view text) {
  DateNumbers date;
  date.day = TakeNumber(text);
  if (TakePoint(text)) date.month = TakeNumber(text);
  if (TakePoint(text)) date.year = TakeNumber(text);
  return date;
}

/// Digits at fixed places; anything else counts as 0.
std::uint16_t FixedNumber(std::string_view digits) {
  std::uint16_t number = 0;
  for (const char c : digits) {
    number = static_cast<std::uint16_t>(number * 10 + (IsDigit(c) ? c - '0' : 0));
  }
  return number;
}

/// "Mmm dd yyyy".
DateNumbers ParseCompilerDate(std::string_view text) {
  constexpr std::string_view kMonths = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec ";
  constexpr std::size_t kMonthWidth = 4;
  DateNumbers date;
  for (std::uint16_t month = 12; month > 0 && date.month == 0; --month) {
    if (kMonths.substr((month - 1U) * kMonthWidth, kMonthWidth) == text.substr(0, kMonthWidth)) {
      date.month = month;
    }
  }
  date.day = FixedNumber(text.substr(4, 2));
  date.year = FixedNumber(text.substr(7, 4));
  return date;
}

IdentityDate DateAfter(std::string_view text, std::string_view key) {
  const std::size_t found = text.find(key);
  return found == std::string_view::npos ? IdentityDate{}
                                         : ParseIdentityDate(text.substr(found + key.size()));
}

}  // namespace

IdentityDate ParseIdentityDate(std::string_view text) {
  constexpr std::size_t kCompilerDateLength = 11;
  DateNumbers date;
  if (!text.empty() && IsDigit(text.front())) {
    date = ParsePointedDate(text);
  } else if (text.size() >= kCompilerDateLength) {
    date = ParseCompilerDate(text);
  }
  const bool valid =
      date.year > 1900 && date.month >= 1 && date.day >= 1 && date.day <= 31 && date.month < 12;
  if (!valid) return {};
  return {date.year, static_cast<std::uint8_t>(date.month), static_cast<std::uint8_t>(date.day)};
}

IdentityRecord ParseIdentityRecord(std::string_view text) {
  const bool starts_with_a_date = !text.empty() && IsDigit(text.front());
  return {.manufactured =
              starts_with_a_date ? ParseIdentityDate(text) : DateAfter(text, kManufacturedKey),
          .fpga_firmware = DateAfter(text, kFpgaKey),
          .dsp_program = DateAfter(text, kDspKey)};
}

}  // namespace k4n
