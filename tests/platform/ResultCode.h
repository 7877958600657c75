// Results as clients and the wire know them: by number. What a test expects is then independent of
// the names in the sources.
#pragma once

#include <cstdint>
#include <iomanip>
#include <ostream>

#include "status/Status.h"

/// A result in a table, by number or by name.
struct ResultCode {
  // NOLINTNEXTLINE(google-explicit-constructor)
  constexpr ResultCode(std::int32_t code) : number(code) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  constexpr ResultCode(Status status) : number(ToCode(status)) {}

  std::int32_t number;
};

constexpr bool operator==(Status status, ResultCode code) { return ToCode(status) == code.number; }

/// How gtest names a result: -6, 0x80047010.
inline void PrintTo(ResultCode code, std::ostream* stream) {
  if (code.number >= -0x8000 && code.number <= 0x7FFF) {
    *stream << code.number;
  } else {
    *stream << "0x" << std::hex << static_cast<std::uint32_t>(code.number) << std::dec;
  }
}
inline void PrintTo(Status status, std::ostream* stream) { PrintTo(ResultCode(status), stream); }
