#include "visa/TraceLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "visa/Process.h"
#include "visa/StatusText.h"

namespace zevisa {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

void AppendNumber(std::string& text, std::uint64_t number) {
  std::array<char, 20> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

/// With zeros in front.
void AppendPadded(std::string& text, std::uint64_t number, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) text += '0';
  for (std::size_t i = text.size(); number != 0 && i-- > text.size() - width; number /= 10) {
    text[i] = static_cast<char>('0' + number % 10);
  }
}

/// "2026-11-25T16:18:50.123456Z"
void AppendTime(std::string& text, std::chrono::system_clock::time_point time) {
  using namespace std::chrono;
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(floor<microseconds>(time - day));
  const auto part = [&](auto number, std::size_t width, char behind) {
    AppendPadded(text, static_cast<std::uint64_t>(number), width);
    text += behind;
  };
  part(static_cast<int>(date.year()), 4, '-');
  part(static_cast<unsigned>(date.month()), 2, '-');
  part(static_cast<unsigned>(date.day()), 2, 'T');
  part(clock.hours().count(), 2, ':');
  part(clock.minutes().count(), 2, ':');
  part(clock.seconds().count(), 2, '.');
  part(clock.subseconds().count(), 6, 'Z');
}

void AppendByte(std::string& text, unsigned char byte) {
  text += kDigits[byte >> 4];
  text += kDigits[byte & 15];
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
      details_ += "\\x";
      AppendByte(details_, static_cast<unsigned char>(c));
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
  details_.reserve(details_.size() + 2 * shown + 4);
  for (std::size_t i = 0; i < shown; ++i) AppendByte(details_, bytes[i]);
  if (shown < size) details_ += "...";
}

std::string TraceLine::Finish() const {
  std::string line;
  line.reserve(128 + details_.size());
  AppendTime(line, time_);
  for (const std::uint64_t number : {ProcessNumber(), ThreadNumber()}) {
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
