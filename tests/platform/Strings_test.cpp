// Automation texts: the same on every system.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "platform/com/Com.h"

namespace {

std::uint32_t PrefixOf(BSTR text) {
  std::uint32_t prefix = 0;
  std::memcpy(&prefix, reinterpret_cast<const char*>(text) - sizeof(prefix), sizeof(prefix));
  return prefix;
}

TEST(Bstr, CarriesItsByteLengthAndAClosingZero) {
  BSTR text = SysAllocString(OLESTR("K4N"));
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(PrefixOf(text), 6U);
  EXPECT_EQ(SysStringLen(text), 3U);
  EXPECT_EQ(SysStringByteLen(text), 6U);
  EXPECT_EQ(text[3], 0);
  SysFreeString(text);
}

TEST(Bstr, KeepsZerosInside) {
  const OLECHAR characters[] = {'a', 0, 'b'};
  BSTR text = SysAllocStringLen(characters, 3);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringLen(text), 3U);
  EXPECT_EQ(text[2], 'b');
  EXPECT_EQ(text[3], 0);
  SysFreeString(text);
}

TEST(Bstr, KeepsAnOddNumberOfBytes) {
  BSTR text = SysAllocStringByteLen("abc", 3);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringByteLen(text), 3U);
  EXPECT_EQ(SysStringLen(text), 1U);
  EXPECT_EQ(std::memcmp(text, "abc\0", 4), 0);
  SysFreeString(text);
}

TEST(Bstr, NullIsEmptyText) {
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0U);
  EXPECT_EQ(SysStringByteLen(nullptr), 0U);
  SysFreeString(nullptr);
}

TEST(Bstr, LengthThatDoesNotFitGivesNull) {
  EXPECT_EQ(SysAllocStringLen(nullptr, std::numeric_limits<UINT>::max()), nullptr);
  EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000001U), nullptr);
}

}  // namespace
