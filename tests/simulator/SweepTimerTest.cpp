#include "simulator/SweepTimer.h"

#include <gtest/gtest.h>

namespace simulator {
namespace {

using std::chrono::milliseconds;
using Start = SweepPlan::Start;

class SweepTimerTest : public ::testing::Test {
 protected:
  void Begin(Start start) { timer_.Restart({10, milliseconds(3), start}); }

  const SweepTimer::Clock::time_point now_{std::chrono::hours(1)};
  SweepTimer timer_;
};

TEST_F(SweepTimerTest, AFreeSweepBeginsWithTheRequestAndTakesPointsTimesDwell) {
  Begin(Start::kAtOnce);
  EXPECT_FALSE(timer_.End());
  timer_.Request(now_);
  EXPECT_EQ(timer_.End(), now_ + milliseconds(30));
  timer_.Request(now_ + milliseconds(20));
  EXPECT_EQ(timer_.End(), now_ + milliseconds(30)) << "a second client started it anew";
  timer_.Cancel();
  EXPECT_FALSE(timer_.End()) << "nobody waits for it any more";
  timer_.Request(now_);
  Begin(Start::kAtOnce);
  EXPECT_FALSE(timer_.End()) << "the settings are new";
}

TEST_F(SweepTimerTest, ATriggeredSweepWaits) {
  Begin(Start::kTrigger);
  timer_.Request(now_);
  EXPECT_FALSE(timer_.End());
  timer_.Trigger(now_ + milliseconds(5));
  EXPECT_EQ(timer_.End(), now_ + milliseconds(35));
  timer_.Trigger(now_ + milliseconds(10));
  EXPECT_EQ(timer_.End(), now_ + milliseconds(35)) << "a trigger within the sweep started it anew";
}

TEST_F(SweepTimerTest, ATriggerBeforeTheRequestIsNotLost) {
  Begin(Start::kTrigger);
  timer_.Trigger(now_);
  timer_.Cancel();
  timer_.Request(now_ + milliseconds(100));
  EXPECT_EQ(timer_.End(), now_ + milliseconds(30));
  timer_.Delivered();
  EXPECT_FALSE(timer_.End()) << "one trigger gave two sweeps";
}

TEST_F(SweepTimerTest, EachTriggerMeasuresOnePoint) {
  Begin(Start::kEachTrigger);
  for (int i = 0; i < 9; ++i) {
    timer_.Trigger(now_);
    EXPECT_FALSE(timer_.End()) << i;
  }
  timer_.Trigger(now_);
  EXPECT_EQ(timer_.End(), now_ + milliseconds(3));
}

}  // namespace
}  // namespace simulator
