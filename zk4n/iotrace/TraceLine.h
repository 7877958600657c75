// One line of an I/O trace of the VISA library: one call.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace iotrace {

/// UTC.
using TimePoint = std::chrono::sys_time<std::chrono::microseconds>;

/// Bytes that one call may move; no message is longer than 65551.
inline constexpr std::size_t kMostBytes = 1 << 20;

struct TraceLine {
  TimePoint time;  ///< of the call's beginning
  std::chrono::microseconds duration{0};
  std::uint64_t process = 0;
  std::uint64_t thread = 0;
  std::optional<std::uint64_t> session;
  std::string call;
  std::optional<std::size_t> moved;  ///< bytes, of a call that moves them
  std::size_t asked = 0;             ///< bytes
  std::string status;                ///< "VI_SUCCESS", "0xBFFF0099"; "-" of a note
  std::vector<std::uint8_t> data;    ///< the first of what was moved; the trace has a bound
  std::vector<std::pair<std::string, std::string>> values;  ///< the others by key, texts unquoted

  [[nodiscard]] TimePoint End() const { return time + duration; }
  [[nodiscard]] bool Failed() const {
    return status.starts_with("VI_ERROR") || status.starts_with("0xB");
  }
  [[nodiscard]] bool TimedOut() const { return status == "VI_ERROR_TMO"; }
  /// Empty where the line has no such key.
  [[nodiscard]] std::string_view Value(std::string_view key) const;
};

/// Reads a line without its end. Returns why it is none: one short text; empty when it is good.
std::string ParseTraceLine(std::string_view text, TraceLine& line);

}  // namespace iotrace
