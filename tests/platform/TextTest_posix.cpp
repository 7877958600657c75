// The code page of a process, which its environment tells.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/os/Text.h"
#include "tests/platform/EnvironmentVariable.h"

namespace {

/// It is looked for once a process, so each case has one of its own.
TEST(ThreadAnsiCodePageDeathTest, IsTheOneThatTheEnvironmentTells) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const auto& [setting, expected] : {std::pair("1251", os::kCyrillicCodePage),
                                          {"65001", os::kUtf8CodePage},
                                          {"1252", os::kWesternCodePage},
                                          {"866", os::kWesternCodePage}}) {
    const EnvironmentVariable variable("ZENTREL_ANSI_CODE_PAGE", setting);
    EXPECT_EXIT(std::_Exit(os::ThreadAnsiCodePage() == expected ? 0 : 1),
                testing::ExitedWithCode(0), "")
        << setting;
  }
}

}  // namespace
