// Automation texts: the same on every system.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string_view>

#include "platform/com/Com.h"

namespace {

struct Allocated {
  BSTR text;
  std::string_view memory;  // from the length in bytes before the text to the zero behind it
};

TEST(Bstr, CarriesItsByteLengthAndAClosingZero) {
  const Allocated cases[] = {
      {SysAllocString(OLESTR("K4N")), {"\6\0\0\0K\0004\0N\0\0\0", 12}},
      {SysAllocStringLen(OLESTR("a\0b"), 3), {"\6\0\0\0a\0\0\0b\0\0\0", 12}},
      {SysAllocStringByteLen("abc", 3), {"\3\0\0\0abc\0", 8}},
  };
  for (const auto& [text, memory] : cases) {
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(text) - 4, memory.size()), memory);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(text) % 4, 0U);
    EXPECT_EQ(SysStringByteLen(text), static_cast<UINT>(memory[0]));
    EXPECT_EQ(SysStringLen(text), static_cast<UINT>(memory[0]) / 2);
    SysFreeString(text);
  }
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
  EXPECT_EQ(SysAllocStringByteLen(nullptr, 0x7FFFFFFF), nullptr);
}

}  // namespace
