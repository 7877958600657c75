#include "platform/os/Text.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/com/Com.h"

namespace {

using os::kCyrillicCodePage;
using os::kUtf8CodePage;
using os::kWesternCodePage;

struct Case {
  const char* name;
  os::CodePage code_page;
  os::WideString wide;
  std::string narrow;
};

// Surrogates cannot be written in literals.
os::WideString Units(std::initializer_list<unsigned> units) {
  os::WideString text;
  for (const unsigned unit : units) text += static_cast<os::WideChar>(unit);
  return text;
}

using namespace std::string_literals;

const Case kBothWays[] = {
    {"EmptyText", kWesternCodePage, {}, ""},
    {"EmbeddedZeroEndsText", kUtf8CodePage, Units({'a', 0, 'b'}), "a\0b"s},
    {"Utf8Limits", kUtf8CodePage, Units({0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0xD800, 0xDC00}),
     "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"},
    {"Utf8LastCharacter", kUtf8CodePage, Units({0xDBFF, 0xDFFF}), "\xF4\x8F\xBF\xBF"},
    {"Utf8ReplacementIsACharacter", kUtf8CodePage, Units({0xFFFD}), "\xEF\xBF\xBD"},
};

const Case kToNarrowOnly[] = {
    {"WesternLacksCyrillic", kWesternCodePage, OLESTR("a\u0414b"), "a?b"},
    {"WesternNoBestFit", kWesternCodePage, OLESTR("\u0101\uFF21"), "??"},
    {"WesternLacksTheFirstOfItsUpperHalf", kWesternCodePage, Units({0x80}), "?"},
    {"CyrillicLacksUmlaut", kCyrillicCodePage, OLESTR("\u00FC"), "?"},
    {"WesternUnpairedSurrogate", kWesternCodePage, Units({'a', 0xD800, 'b'}), "a?b"},
    {"Utf8HighSurrogateAlone", kUtf8CodePage, Units({'a', 0xD800, 'b'}), "a?b"},
    {"Utf8LowSurrogateAlone", kUtf8CodePage, Units({0xDC00, 'b'}), "?b"},
    {"Utf8HighSurrogateAtEnd", kUtf8CodePage, Units({'a', 0xDBFF}), "a?"},
    {"Utf8SurrogatesInWrongOrder", kUtf8CodePage, Units({0xDC00, 0xD800}), "??"},
};

const Case kToWideOnly[] = {
    {"LoneContinuation", kUtf8CodePage, Units({'a', 0xFFFD, 'b'}),
     "a\x80"
     "b"},
    {"TruncatedAtEnd", kUtf8CodePage, Units({0xFFFD}), "\xE2\x82"},
    {"TruncatedBeforeLetter", kUtf8CodePage, Units({0xFFFD, 'A'}),
     "\xE2\x82"
     "A"},
    {"OverlongSlash", kUtf8CodePage, Units({0xFFFD, 0xFFFD}), "\xC0\xAF"},
    {"OverlongThreeBytes", kUtf8CodePage, Units({0xFFFD, 0xFFFD, 0xFFFD}), "\xE0\x9F\xBF"},
    {"OverlongFourBytes", kUtf8CodePage, Units({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}),
     "\xF0\x8F\xBF\xBF"},
    {"EncodedSurrogate", kUtf8CodePage, Units({0xFFFD, 0xFFFD, 0xFFFD}), "\xED\xA0\x80"},
    {"AboveLastCharacter", kUtf8CodePage, Units({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}),
     "\xF4\x90\x80\x80"},
    {"ByteThatNeverOccurs", kUtf8CodePage, Units({0xFFFD}), "\xFF"},
};

TEST(Text, IsConverted) {
  for (const auto& test : kBothWays) {
    EXPECT_EQ(os::ToNarrow(test.wide, test.code_page), test.narrow) << test.name;
    EXPECT_EQ(os::ToWide(test.narrow, test.code_page), test.wide) << test.name;
  }
  for (const auto& test : kToNarrowOnly) {
    EXPECT_EQ(os::ToNarrow(test.wide, test.code_page), test.narrow) << test.name;
  }
  for (const auto& test : kToWideOnly) {
    EXPECT_EQ(os::ToWide(test.narrow, test.code_page), test.wide) << test.name;
  }
}

/// The upper halves; 0410 and the letters after it, 00A0 and all after it, stand in their order.
TEST(Text, EveryByteOfASingleByteCodePageHasItsCharacter) {
  const os::WideString upper_halves[] = {
      OLESTR("ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–—\u0098™љ›њќћџ"
             "\u00A0ЎўЈ¤Ґ¦§Ё©Є«¬\u00AD®Ї°±Ііґµ¶·ё№є»јЅѕї"),
      OLESTR("€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸ")};
  for (const bool is_western : {false, true}) {
    os::WideString wide;
    for (os::WideChar c = 0; c < 0x80; ++c) wide += c;
    wide += upper_halves[is_western ? 1 : 0];
    for (os::WideChar c = is_western ? 0xA0 : 0x410; wide.size() < 256; ++c) wide += c;
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    const os::CodePage code_page = is_western ? kWesternCodePage : kCyrillicCodePage;
    EXPECT_EQ(os::ToWide(all, code_page), wide);
    EXPECT_EQ(os::ToNarrow(wide, code_page), all);
  }
}

}  // namespace
