#include "zk4n/iotrace/TraceLine.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace iotrace {
namespace {

/// Takes a text apart, from its front.
class Cursor {
 public:
  explicit Cursor(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  bool Take(char expected) {
    if (!rest_.starts_with(expected)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  /// Up to this character, which is taken, too; else up to the end.
  std::string_view TakeUntil(char end) {
    const std::string_view taken = rest_.substr(0, rest_.find(end));
    rest_.remove_prefix(std::min(taken.size() + 1, rest_.size()));
    return taken;
  }

  /// A text behind its opening quote; false when it has no end.
  bool TakeQuoted(std::string& text) {
    while (!rest_.empty()) {
      const char c = rest_.front();
      rest_.remove_prefix(1);
      if (c == '"') return true;
      text += c == '\\' ? TakeEscape() : c;
    }
    return false;
  }

 private:
  char TakeEscape() {
    unsigned code = 0;
    if (rest_.size() >= 3 && rest_[0] == 'x' &&
        std::from_chars(rest_.data() + 1, rest_.data() + 3, code, 16).ptr == rest_.data() + 3) {
      rest_.remove_prefix(3);
      return static_cast<char>(code);
    }
    const char c = rest_.empty() ? '\\' : rest_.front();
    rest_.remove_prefix(std::min<std::size_t>(1, rest_.size()));
    return c;
  }

  std::string_view rest_;
};

/// The whole text as a decimal number.
template <typename Integer>
bool ReadNumber(std::string_view text, Integer& value) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc{} && stop == end && !text.empty();
}

/// "2026-11-25T16:18:50.123456Z"
bool ReadTime(std::string_view text, TimePoint& time) {
  constexpr std::string_view kShape = "dddd-dd-ddTdd:dd:dd.ddddddZ";
  if (text.size() != kShape.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool fits = kShape[i] == 'd' ? text[i] >= '0' && text[i] <= '9' : text[i] == kShape[i];
    if (!fits) return false;
  }
  const auto number = [text](std::size_t at, std::size_t size) {
    int value = 0;
    ReadNumber(text.substr(at, size), value);
    return value;
  };
  using namespace std::chrono;
  const year_month_day date{year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                            day(static_cast<unsigned>(number(8, 2)))};
  if (!date.ok() || number(11, 2) > 23 || number(14, 2) > 59 || number(17, 2) > 60) return false;
  time = sys_days(date) + hours(number(11, 2)) + minutes(number(14, 2)) + seconds(number(17, 2)) +
         microseconds(number(20, 6));
  return true;
}

/// "-" for none.
bool ReadSession(std::string_view text, std::optional<std::uint64_t>& session) {
  std::uint64_t value = 0;
  if (text != "-" && !ReadNumber(text, value)) return false;
  if (text != "-") session = value;
  return true;
}

/// "moved/asked", "-" for a call that moves none.
bool ReadCounts(std::string_view text, TraceLine& line) {
  if (text == "-") return true;
  Cursor cursor(text);
  std::size_t moved = 0;
  if (!ReadNumber(cursor.TakeUntil('/'), moved) || !ReadNumber(cursor.TakeUntil('/'), line.asked)) {
    return false;
  }
  line.moved = moved;
  return cursor.AtEnd();
}

bool ReadDuration(std::string_view text, std::chrono::microseconds& duration) {
  std::uint32_t value = 0;  // an hour and more
  if (!ReadNumber(text, value)) return false;
  duration = std::chrono::microseconds(value);
  return true;
}

bool IsStatus(std::string_view text) {
  const bool is_number = text.size() == 10 && text.starts_with("0x");
  return is_number || (text.size() > 3 && text.starts_with("VI_")) || text == "-";
}

bool IsName(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  });
}

/// Hexadecimal digits; with three dots at their end what follows was cut.
std::string ReadData(std::string_view text, TraceLine& line) {
  const bool is_cut = text.ends_with("...");
  if (is_cut) text.remove_suffix(3);
  line.data.reserve(text.size() / 2);
  for (; text.size() >= 2; text.remove_prefix(2)) {
    std::uint8_t byte = 0;
    if (std::from_chars(text.data(), text.data() + 2, byte, 16).ptr != text.data() + 2) break;
    line.data.push_back(byte);
  }
  if (!text.empty()) return "data that is not hexadecimal";
  const std::size_t moved = line.moved.value_or(0);
  if (is_cut ? line.data.size() >= moved : line.data.size() != moved) {
    return "data of " + std::to_string(line.data.size()) + " bytes, " + std::to_string(moved) +
           " were moved";
  }
  return {};
}

std::string ReadValues(Cursor& cursor, TraceLine& line) {
  bool has_data = false;
  while (!cursor.AtEnd()) {
    const std::string_view key = cursor.TakeUntil('=');
    if (!IsName(key)) return "a key that is no name";
    std::string value;
    if (cursor.Take('"')) {
      if (!cursor.TakeQuoted(value)) return "a text without an end";
      if (!cursor.AtEnd() && !cursor.Take(' ')) return "no space behind a text";
    } else {
      value = cursor.TakeUntil(' ');
    }
    if (key == "data" && !has_data) {
      has_data = true;
      if (std::string why = ReadData(value, line); !why.empty()) return why;
    } else {
      line.values.emplace_back(key, std::move(value));
    }
  }
  return {};
}

}  // namespace

std::string_view TraceLine::Value(std::string_view key) const {
  const auto found = std::find_if(values.begin(), values.end(),
                                  [key](const auto& pair) { return pair.first == key; });
  return found == values.end() ? std::string_view() : found->second;
}

std::string ParseTraceLine(std::string_view text, TraceLine& line) {
  line = {};
  Cursor cursor(text);
  if (!ReadTime(cursor.TakeUntil(' '), line.time)) return "not a line of an I/O trace";
  if (!ReadNumber(cursor.TakeUntil(' '), line.process)) return "no process number";
  if (!ReadNumber(cursor.TakeUntil(' '), line.thread)) return "no thread number";
  if (!ReadSession(cursor.TakeUntil(' '), line.session)) return "no session";
  line.call = cursor.TakeUntil(' ');
  if (!IsName(line.call)) return "no call";
  if (!ReadCounts(cursor.TakeUntil(' '), line)) return "no counts of bytes";
  if (line.moved.value_or(0) > kMostBytes) return "more bytes than a message holds";
  if (!ReadDuration(cursor.TakeUntil(' '), line.duration)) return "no duration";
  line.status = cursor.TakeUntil(' ');
  if (!IsStatus(line.status)) return "no status";
  return ReadValues(cursor, line);
}

}  // namespace iotrace
