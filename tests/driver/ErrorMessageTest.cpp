#include "driver/ErrorMessage.h"

#include <gtest/gtest.h>

#include "platform/com/Com.h"

using namespace driver;

namespace {

struct BuilderCase {
  std::uint32_t code;
  const char* insert;
  const char* expected;
};

constexpr BuilderCase kBuilderCases[] = {
    {0x80047056, "", "Could not allocate necessary memory."},
    {0x80047060, "%1%2!X!%", "Unknown resource %1%2!X!%."},  // what is inserted is not read again
    {0x80040000, "", "Unknown error 80040000."},             // below the table
    {0x80047061, "", "Unknown error 80047061."},             // above it
    {0x8004705E, "", "Unknown error 8004705E."},             // in its range, but not listed
    {0xBFFF00AB, "", "Unknown error BFFF00AB."},
    {0x00002749, "", "Unknown error 2749."},
};

TEST(ErrorMessage, BuildsWhatNoCallOfAClientShows) {
  for (const auto& row : kBuilderCases) {
    const Status code{SignedBits(row.code)};
    EXPECT_EQ(BuildErrorMessage(code, os::ToWide(row.insert), OLESTR("x"), OLESTR("y")),
              os::ToWide(row.expected));
  }
}

}  // namespace
