// The single-byte code pages that are known on every system.
#pragma once

#include <array>
#include <cstdint>

namespace os {

/// Bytes 0x80 to 0xFF of a code page as UTF-16; a byte that stands for nothing maps to the C1
/// control character of its number, as Windows maps it.
using UpperHalf = std::array<char16_t, 128>;

/// Windows-1251.
const UpperHalf& CyrillicUpperHalf();
/// Windows-1252.
const UpperHalf& WesternUpperHalf();

}  // namespace os
