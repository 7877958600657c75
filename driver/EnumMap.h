// Tables between the values that clients see and the manager's codes, read in both directions.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

namespace driver {

template <typename Value, typename Code>
struct EnumPair {
  Value value;
  Code code;
};

template <typename Value, typename Code, std::size_t kSize>
using EnumMap = std::array<EnumPair<Value, Code>, kSize>;

/// The manager's code for a client's value; nothing for a value that the table does not list.
template <typename Value, typename Code, std::size_t kSize>
constexpr std::optional<Code> CodeOf(const EnumMap<Value, Code, kSize>& map, Value value) {
  for (const auto& pair : map) {
    if (pair.value == value) return pair.code;
  }
  return std::nullopt;
}

/// The client's value for one of the manager's codes; nothing for a code that the table does not
/// list.
template <typename Value, typename Code, std::size_t kSize>
constexpr std::optional<Value> ValueOf(const EnumMap<Value, Code, kSize>& map, Code code) {
  for (const auto& pair : map) {
    if (pair.code == code) return pair.value;
  }
  return std::nullopt;
}

/// Writes the client's value for one of the manager's codes. For a code that is not in the table
/// the client's variable, which may be uninitialised, is neither read nor written.
template <typename Value, typename Code, std::size_t kSize>
constexpr void PutValueOf(const EnumMap<Value, Code, kSize>& map, Code code, Value* out) {
  if (const std::optional<Value> value = ValueOf(map, code)) *out = *value;
}

}  // namespace driver
