// The error trail of a link that stays dead: every record is told, and little is kept.
#include <gtest/gtest.h>

#include "K4NHardWare/ErrorTrail.h"
#include "tests/hostile/Heap.h"

using namespace k4n;

namespace {

constexpr Status kLost{SignedBits(0xBFFF00A6)};
constexpr ErrorRecord kFailedRead{kLost, Site::kWorkerRead};
constexpr ErrorRecord kFailedButton{kLost, Site::kWorkerRfButton};

std::uint64_t CountOf(const ErrorTrail& trail) {
  std::uint64_t count = 0;
  for (std::size_t i = 0; const auto run = trail.RunAt(i); ++i) count += run->count;
  return count;
}

TEST(ErrorTrailTest, RunsAreKeptOnceAndToldRecordByRecord) {
  ErrorTrail trail;
  for (int i = 0; i < 1'000'000; ++i) trail.Append(kLost, Site::kWorkerRead);
  trail.Append(kLost, Site::kWorkerRfButton);
  trail.Append(kLost, Site::kWorkerRead);
  EXPECT_EQ(trail.RunAt(0)->count, 1'000'000U);
  EXPECT_EQ(trail.RunAt(2)->record, kFailedRead);
  EXPECT_FALSE(trail.RunAt(3));
  for (int i = 0; i < 1'000'000; ++i) ASSERT_EQ(trail.Take(), kFailedRead) << i;
  EXPECT_EQ(trail.Take(), kFailedButton) << "a record between two runs parts them";
  EXPECT_EQ(trail.Take(), kFailedRead);
  EXPECT_EQ(trail.Take(), std::nullopt);
}

TEST(ErrorTrailTest, FullTrailCountsInTheNewestRunOfTheKind) {
  ErrorTrail trail;
  const std::size_t appended = 3 * ErrorTrail::kLongestTrail;  // each a run of its own
  for (std::size_t i = 0; i < appended / 2; ++i) {
    trail.Append(kLost, Site::kWorkerRead);
    trail.Append(kLost, Site::kWorkerRfButton);
  }
  trail.Append(Status{1}, Site::kDwell);
  EXPECT_TRUE(trail.RunAt(ErrorTrail::kLongestTrail)) << "a new kind is kept, too";
  EXPECT_FALSE(trail.RunAt(ErrorTrail::kLongestTrail + 1));
  EXPECT_EQ(CountOf(trail), appended + 1) << "none is lost";
  for (std::size_t i = 0; i + 2 < ErrorTrail::kLongestTrail; ++i) {
    ASSERT_EQ(trail.Take(), i % 2 == 0 ? kFailedRead : kFailedButton)
        << "in order up to the limit, " << i;
  }
  trail.Append(kLost, Site::kDwell);
  EXPECT_EQ(trail.RunAt(3)->record, (ErrorRecord{kLost, Site::kDwell})) << "in order again";
}

TEST(ErrorTrailTest, WithoutMemoryFailuresAreCountedWithTheirKind) {
  constexpr int kAppended = 1000;
  ErrorTrail trail;
  {
    const Shortage shortage;
    for (int i = 0; i < kAppended; ++i) {
      trail.Append(kLost, i % 2 == 0 ? Site::kWorkerRead : Site::kWorkerRfButton);
    }
  }
  EXPECT_FALSE(trail.RunAt(kAppended - 1)) << "there was memory for all";
  EXPECT_EQ(CountOf(trail), static_cast<std::uint64_t>(kAppended)) << "none is lost";
  EXPECT_EQ(trail.Take(), kFailedRead);
  EXPECT_EQ(trail.Take(), kFailedButton);
}

}  // namespace
