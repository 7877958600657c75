#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/os/CodePages.h"
#include "platform/os/Text.h"

namespace os {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

const UpperHalf& UpperHalfOf(CodePage code_page) {
  return code_page == kCyrillicCodePage ? CyrillicUpperHalf() : WesternUpperHalf();
}

/// The code point at `position`, which moves behind it; U+FFFD for an unpaired surrogate.
char32_t NextCodePoint(WideView text, std::size_t& position) {
  const char16_t first = text[position++];
  if (first < 0xD800 || first > 0xDFFF) return first;
  if (first > 0xDBFF || position == text.size()) return kReplacement;
  const char16_t second = text[position];
  if (second < 0xDC00 || second > 0xDFFF) return kReplacement;
  ++position;
  return 0x10000 + ((static_cast<char32_t>(first) - 0xD800) << 10) + (second - 0xDC00U);
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | (code >> 6));
    tail(0);
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0 | (code >> 12));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0 | (code >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

void AppendWide(WideString& text, char32_t code) {
  if (code < 0x10000) {
    text += static_cast<char16_t>(code);
    return;
  }
  text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
  text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
}

/// Decodes one UTF-8 sequence (RFC 3629); an ill-formed byte gives U+FFFD and is passed over alone.
char32_t NextUtf8(std::string_view text, std::size_t& position) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(position++);
  if (lead < 0x80) return lead;
  const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || position + more > text.size()) return kReplacement;
  char32_t code = lead & (0x3FU >> more);
  for (std::size_t i = 0; i < more; ++i) {
    if ((byte(position + i) & 0xC0) != 0x80) return kReplacement;
    code = (code << 6) | (byte(position + i) & 0x3FU);
  }
  constexpr char32_t kSmallest[] = {0x80, 0x800, 0x10000};
  if (code < kSmallest[more - 1] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    return kReplacement;
  }
  position += more;
  return code;
}

}  // namespace

CodePage ThreadAnsiCodePage() {
  static const CodePage code_page = [] {
    const char* const wanted = std::getenv("ZENTREL_ANSI_CODE_PAGE");
    if (wanted == nullptr) return kWesternCodePage;
    if (std::strcmp(wanted, "1251") == 0) return kCyrillicCodePage;
    return std::strcmp(wanted, "65001") == 0 ? kUtf8CodePage : kWesternCodePage;
  }();
  return code_page;
}

std::string ToNarrow(WideView text, CodePage code_page) {
  std::string narrow;
  narrow.reserve(text.size());
  const UpperHalf& upper = UpperHalfOf(code_page);
  for (std::size_t position = 0; position < text.size();) {
    const char32_t code = NextCodePoint(text, position);
    if (code_page == kUtf8CodePage) {
      AppendUtf8(narrow, code == kReplacement ? U'?' : code);
    } else if (code < 0x80) {
      narrow += static_cast<char>(code);
    } else {
      const auto found = std::find(upper.begin(), upper.end(), code);
      narrow += found == upper.end() ? '?' : static_cast<char>(0x80 + (found - upper.begin()));
    }
  }
  return narrow;
}

WideString ToWide(std::string_view text, CodePage code_page) {
  WideString wide;
  wide.reserve(text.size());
  const UpperHalf& upper = UpperHalfOf(code_page);
  for (std::size_t position = 0; position < text.size();) {
    if (code_page == kUtf8CodePage) {
      AppendWide(wide, NextUtf8(text, position));
      continue;
    }
    const auto byte = static_cast<unsigned char>(text[position++]);
    wide += byte < 0x80 ? static_cast<char16_t>(byte) : upper[byte - 0x80U];
  }
  return wide;
}

}  // namespace os
