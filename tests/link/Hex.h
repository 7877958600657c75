// Bytes as tests write and show them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/// "AA 55 01".
inline std::string ToHex(std::span<const std::uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t value : bytes) {
    if (!text.empty()) text += ' ';
    text += kDigits[value >> 4];
    text += kDigits[value & 15];
  }
  return text;
}

/// Pairs of digits; blanks and the separators | : are skipped.
inline Bytes FromHex(std::string_view text) {
  Bytes bytes;
  std::string digits;
  for (const char c : text) {
    if (c == ' ' || c == '|' || c == ':') continue;
    digits += c;
    if (digits.size() < 2) continue;
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits, nullptr, 16)));
    digits.clear();
  }
  if (!digits.empty()) throw std::invalid_argument("odd number of hexadecimal digits");
  return bytes;
}
inline Bytes operator""_hex(const char* text, std::size_t size) { return FromHex({text, size}); }
