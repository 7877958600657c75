// The lines of the I/O trace.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "visa/Visa.h"

namespace zevisa {

/// One call of a client, from its beginning on:
///
///     TIME PID TID SESSION CALL MOVED/ASKED DURATION STATUS [KEY=VALUE]...
///
/// with the time in UTC, the duration in microseconds, and "-" where there is nothing to tell.
class TraceLine {
 public:
  /// The call begins now. The object is what it was made with, 0 for none; the name must outlive
  /// the line, which shows so many bytes of a transfer.
  TraceLine(const char* call, ViObject object, std::size_t shown_data = 0)
      : call_(call), object_(object), shown_data_(shown_data) {}

  /// The call is over.
  void End(ViStatus status);
  /// Whether it ended well, so that its results are there.
  [[nodiscard]] bool IsGood() const { return is_good_; }
  /// How many bytes it moved of those that were asked for.
  void Bytes(ViUInt32 moved, ViUInt32 asked);

  /// Text in double quotes, with all but printable ASCII as \xNN.
  void Text(std::string_view key, std::string_view value);
  void Number(std::string_view key, std::uint64_t value);
  void Name(std::string_view key, std::string_view value);
  /// What was moved, in hexadecimal; three dots follow when not all is shown.
  void Data(const ViByte* bytes, std::size_t size);

  /// The whole line, with its end. One that is not over has no status.
  [[nodiscard]] std::string Finish() const;

 private:
  void Key(std::string_view key);

  const char* call_;
  ViObject object_;
  std::size_t shown_data_;
  std::chrono::system_clock::time_point time_ = std::chrono::system_clock::now();
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  std::chrono::microseconds duration_{};
  std::string status_ = "-";
  bool is_good_ = false;
  std::string bytes_ = "-";
  std::string details_;
};

/// A line about the trace itself, or about an object, rather than a call.
std::string NoteLine(std::string_view text, ViObject object = 0);

/// "VI_ERROR_TMO"; "0xBFFF0099" for a status without a name.
std::string StatusName(ViStatus status);
/// "0x3FFF0FFF".
std::string HexadecimalNumber(std::uint32_t number);

}  // namespace zevisa
