#include "visa/TraceLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "platform/os/Process.h"
#include "visa/StatusText.h"

namespace zevisa {
namespace {

void AppendNumber(std::string& text, std::uint64_t number) {
  std::array<char, 20> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

/// Puts the last digits of a number so that they end before this place.
void PutDigits(char* end, unsigned count, std::uint64_t number) {
  for (; count > 0; --count, number /= 10) *--end = static_cast<char>('0' + number % 10);
}

void AppendTime(std::string& text, std::chrono::system_clock::time_point time) {
  using namespace std::chrono;
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const auto of_day = static_cast<std::uint64_t>(floor<microseconds>(time - day).count());
  const std::uint64_t seconds = of_day / 1000000;
  const std::size_t begin = text.size();
  text += "0000-00-00T00:00:00.000000Z";
  char* const place = text.data() + begin;
  PutDigits(place + 4, 4, static_cast<std::uint64_t>(static_cast<int>(date.year())));
  PutDigits(place + 7, 2, static_cast<unsigned>(date.month()));
  PutDigits(place + 10, 2, static_cast<unsigned>(date.day()));
  PutDigits(place + 13, 2, seconds / 3600);
  PutDigits(place + 16, 2, seconds / 60 % 60);
  PutDigits(place + 19, 2, seconds % 60);
  PutDigits(place + 26, 6, of_day);
}

void PutByte(char* place, unsigned char byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  place[0] = kDigits[byte >> 4];
  place[1] = kDigits[byte & 15];
}

}  // namespace

void TraceLine::End(ViStatus status) {
  const auto passed = std::chrono::steady_clock::now() - begin_;
  duration_ = std::chrono::duration_cast<std::chrono::microseconds>(passed);
  status_ = StatusName(status);
  is_good_ = status >= 0;
}

void TraceLine::Bytes(ViUInt32 moved, ViUInt32 asked) {
  bytes_.clear();
  AppendNumber(bytes_, moved);
  bytes_ += '/';
  AppendNumber(bytes_, asked);
}

void TraceLine::Key(std::string_view key) {
  details_ += ' ';
  details_ += key;
  details_ += '=';
}

void TraceLine::Text(std::string_view key, std::string_view value) {
  Key(key);
  details_ += '"';
  for (const char c : value) {
    const bool is_printable = c >= ' ' && c <= '~';
    if (c == '"' || c == '\\') details_ += '\\';
    if (is_printable) {
      details_ += c;
    } else {
      details_ += "\\x00";
      PutByte(details_.data() + details_.size() - 2, static_cast<unsigned char>(c));
    }
  }
  details_ += '"';
}

void TraceLine::Number(std::string_view key, std::uint64_t value) {
  Key(key);
  AppendNumber(details_, value);
}

void TraceLine::Name(std::string_view key, std::string_view value) {
  Key(key);
  details_ += value;
}

void TraceLine::Data(const ViByte* bytes, std::size_t size) {
  Key("data");
  const std::size_t shown = std::min(size, shown_data_);
  const std::size_t begin = details_.size();
  details_.resize(begin + 2 * shown);
  for (std::size_t i = 0; i < shown; ++i) PutByte(details_.data() + begin + 2 * i, bytes[i]);
  if (shown < size) details_ += "...";
}

std::string TraceLine::Finish() const {
  std::string line;
  line.reserve(128 + details_.size());
  AppendTime(line, time_);
  for (const std::uint64_t number : {os::ProcessNumber(), os::ThreadNumber()}) {
    line += ' ';
    AppendNumber(line, number);
  }
  line += ' ';
  if (object_ == 0) {
    line += '-';
  } else {
    AppendNumber(line, object_);
  }
  line.append(" ").append(call_).append(" ").append(bytes_).append(" ");
  AppendNumber(line, static_cast<std::uint64_t>(duration_.count()));
  line.append(" ").append(status_).append(details_).append("\n");
  return line;
}

std::string NoteLine(std::string_view text, ViObject object) {
  TraceLine line("note", object);
  line.Text("text", text);
  return line.Finish();
}

std::string StatusName(ViStatus status) {
  const std::string_view text = StatusText(status);
  return text.empty() ? HexadecimalNumber(static_cast<std::uint32_t>(status))
                      : std::string(text.substr(0, text.find(':')));
}

std::string HexadecimalNumber(std::uint32_t number) {
  std::array<char, 11> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(number));
  return text.data();
}

}  // namespace zevisa
