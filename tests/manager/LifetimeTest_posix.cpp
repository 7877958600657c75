// What a session takes from the system, it gives back.
#include <filesystem>

#include "tests/manager/ManagerFixture.h"

namespace {

std::ptrdiff_t Entries(const char* folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

TEST_F(ManagerTest, SessionsLeaveNoThreadAndNoHandleBehind) {
  constexpr int kSessions = 200;
  const auto open_and_close = [this] {
    visa_.RuleBody(kWrite, kFrequencyId, 0, kLimits, 0x60, 1);
    ASSERT_EQ(manager_.Initialize(kResource, ""), 0);
    StartMeasuring();
    ASSERT_EQ(manager_.Close(), 0);
  };
  open_and_close();
  const auto threads = Entries("/proc/self/task");
  const auto handles = Entries("/proc/self/fd");
  for (int i = 0; i < kSessions && !HasFatalFailure(); ++i) open_and_close();
  EXPECT_EQ(Entries("/proc/self/task"), threads);
  EXPECT_EQ(Entries("/proc/self/fd"), handles);
  EXPECT_EQ(visa_.control().OpenSessions(), 0U);
}

}  // namespace
