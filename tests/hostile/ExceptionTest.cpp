// Exceptions in the worker's thread, from the heap and from VISA libraries: none ends the program,
// each is told, and the worker goes on and makes way as ever.
#include "tests/manager/ManagerFixture.h"

namespace {

using scripted::Function;
using testing::ElementsAre;

constexpr ErrorRecord kThrown{Status::kVisaIo, Site::kWorkerRead};

TEST_F(ManagerTest, ThrowingSendIsAFailedReadAndEndsTheTriggeredSweep) {
  Open();
  ASSERT_EQ(manager_.SetSweepMode(SweepMode::kList), 0);
  visa_.SetResult(Function::kWrite, scripted::kThrow, 1);
  manager_.RequestSoftwareTrigger();
  EXPECT_TRUE(WaitUntil([this] { return !IsMeasuring(); }));
  EXPECT_THAT(ErrorRecords(), ElementsAre(kThrown));
  manager_.RequestSoftwareTrigger();
  visa_.CompleteData(Block(4));
  EXPECT_TRUE(WaitForBlock());
  EXPECT_EQ(trace_.ColumnCount(), 4);
}

/// The exception flies when the stop request has been taken: a setting waits for its
/// acknowledgement.
TEST_F(ManagerTest, StopRequestIsAcknowledgedThoughClearingThrows) {
  OpenAndMeasure();
  visa_.SetResult(Function::kClear, scripted::kThrow, 1);
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  EXPECT_THAT(ErrorRecords(), ElementsAre(kThrown));
  visa_.CompleteData(Block(2));
  EXPECT_TRUE(WaitForBlock()) << "reading goes on";
}

TEST_F(ManagerTest, WorkerOfALibraryThatAlwaysThrowsDoesNotSpin) {
  OpenAndMeasure();
  visa_.SetResult(Function::kClear, scripted::kThrow);
  visa_.SetResult(Function::kRead, 0xBFFF00A6);
  ASSERT_TRUE(WaitUntil([this] { return ErrorRecords().size() >= 2; }));
  const std::uint32_t start = os::TickCount();
  const std::size_t before = ErrorRecords().size();
  os::Sleep(std::chrono::milliseconds(100));
  const std::size_t records = ErrorRecords().size() - before;
  EXPECT_LE(records, 2 * ((os::TickCount() - start) / 5 + 2)) << "two a round of at least 5 ms";
  visa_.SetResult(Function::kClear, 0, 0);
  visa_.SetResult(Function::kRead, 0, 0);
  visa_.ClearRecord();
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  ASSERT_TRUE(WaitUntilRequested("6", 1));
  visa_.CompleteData(Block(2));
  EXPECT_TRUE(WaitForBlock());
}

}  // namespace
