#include "platform/os/Text.h"

#include <algorithm>
#include <optional>

#include "platform/os/CodePages.h"
#include "platform/os/System.h"

namespace os {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kNoCharacter = 0xFFFFFFFF;
constexpr char kUnknown = '?';

const UpperHalf* SingleByteTable(CodePage code_page) {
  switch (code_page) {
    case kCyrillicCodePage:
      return &CyrillicUpperHalf();
    case kWesternCodePage:
      return &WesternUpperHalf();
    default:
      return nullptr;
  }
}

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// Takes the first character off the text; kNoCharacter for an unpaired surrogate.
char32_t TakeCharacter(WideView& text) {
  const char32_t unit = text[0];
  text.remove_prefix(1);
  if (!IsHighSurrogate(unit) && !IsLowSurrogate(unit)) return unit;
  if (IsLowSurrogate(unit) || text.empty() || !IsLowSurrogate(text[0])) return kNoCharacter;
  const char32_t low = text[0];
  text.remove_prefix(1);
  return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

void AppendSingleByte(std::string& out, char32_t character, const UpperHalf& table) {
  if (character < 0x80) {
    out += static_cast<char>(character);
    return;
  }
  const auto* const found = std::find(table.begin(), table.end(), character);
  out += found == table.end() ? kUnknown : static_cast<char>(0x80 + (found - table.begin()));
}

void AppendUtf8(std::string& out, char32_t character) {
  const auto tail = [&](int shift) {
    out += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
  };
  if (character == kNoCharacter) {
    out += kUnknown;
  } else if (character < 0x80) {
    out += static_cast<char>(character);
  } else if (character < 0x800) {
    out += static_cast<char>(0xC0 | (character >> 6));
    tail(0);
  } else if (character < 0x10000) {
    out += static_cast<char>(0xE0 | (character >> 12));
    tail(6), tail(0);
  } else {
    out += static_cast<char>(0xF0 | (character >> 18));
    tail(12), tail(6), tail(0);
  }
}

/// What a byte that begins a UTF-8 sequence says about it (The Unicode Standard, table 3-7).
struct Lead {
  int continuations;
  char32_t bits;
  unsigned char second_min;
  unsigned char second_max;
};

std::optional<Lead> LeadOf(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return Lead{1, byte & 0x1FU, 0x80, 0xBF};
  if (byte >= 0xE0 && byte <= 0xEF) {
    const unsigned char min = byte == 0xE0 ? 0xA0 : 0x80;
    const unsigned char max = byte == 0xED ? 0x9F : 0xBF;
    return Lead{2, byte & 0x0FU, min, max};
  }
  if (byte >= 0xF0 && byte <= 0xF4) {
    const unsigned char min = byte == 0xF0 ? 0x90 : 0x80;
    const unsigned char max = byte == 0xF4 ? 0x8F : 0xBF;
    return Lead{3, byte & 0x07U, min, max};
  }
  return std::nullopt;
}

/// Takes one character off the text; for ill-formed bytes U+FFFD, once for each longest piece that
/// could have begun a character.
char32_t TakeUtf8(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text[0]);
  text.remove_prefix(1);
  if (first < 0x80) return first;
  const auto lead = LeadOf(first);
  if (!lead) return kReplacement;
  char32_t character = lead->bits;
  for (int i = 0; i < lead->continuations; ++i) {
    const unsigned char min = i == 0 ? lead->second_min : 0x80;
    const unsigned char max = i == 0 ? lead->second_max : 0xBF;
    const auto byte = text.empty() ? 0 : static_cast<unsigned char>(text[0]);
    if (byte < min || byte > max) return kReplacement;
    text.remove_prefix(1);
    character = (character << 6) | (byte & 0x3FU);
  }
  return character;
}

void AppendWide(WideString& out, char32_t character) {
  if (character < 0x10000) {
    out += static_cast<WideChar>(character);
    return;
  }
  out += static_cast<WideChar>(0xD800 + ((character - 0x10000) >> 10));
  out += static_cast<WideChar>(0xDC00 + ((character - 0x10000) & 0x3FF));
}

}  // namespace

std::string ToNarrow(WideView text, CodePage code_page) {
  const UpperHalf* const table = SingleByteTable(code_page);
  if (table == nullptr && code_page != kUtf8CodePage) return system::ToNarrow(text, code_page);
  std::string narrow;
  narrow.reserve(text.size());
  while (!text.empty()) {
    const char32_t character = TakeCharacter(text);
    if (table != nullptr) {
      AppendSingleByte(narrow, character, *table);
    } else {
      AppendUtf8(narrow, character);
    }
  }
  return narrow;
}

std::string ToNarrow(WideView text) { return ToNarrow(text, ThreadAnsiCodePage()); }

WideString ToWide(std::string_view text, CodePage code_page) {
  const UpperHalf* const table = SingleByteTable(code_page);
  if (table == nullptr && code_page != kUtf8CodePage) return system::ToWide(text, code_page);
  WideString wide;
  wide.reserve(text.size());
  if (table != nullptr) {
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      wide += static_cast<WideChar>(byte < 0x80 ? byte : (*table)[byte - 0x80U]);
    }
    return wide;
  }
  while (!text.empty()) AppendWide(wide, TakeUtf8(text));
  return wide;
}

WideString ToWide(std::string_view text) { return ToWide(text, ThreadAnsiCodePage()); }

}  // namespace os
