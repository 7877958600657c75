#include "platform/os/Sync.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(Semaphore, HoldsOneSignalAtMost) {
  os::Semaphore semaphore;
  EXPECT_FALSE(semaphore.TryAcquire());
  semaphore.Release();
  semaphore.Release();
  EXPECT_TRUE(semaphore.TryAcquire());
  EXPECT_FALSE(semaphore.TryAcquire());
}

TEST(Semaphore, TimesOutNotBeforeItsTime) {
  os::Semaphore semaphore;
  const auto start = steady_clock::now();
  EXPECT_FALSE(semaphore.AcquireFor(milliseconds(50)));
  // The tick of some systems ends a wait up to one tick early.
  EXPECT_GE(steady_clock::now() - start, milliseconds(49));
  EXPECT_FALSE(semaphore.AcquireFor(milliseconds(0)));
  EXPECT_FALSE(semaphore.AcquireFor(milliseconds(-1)));
}

TEST(WaitAny, TakesTheFirstInOrderAndOnlyThat) {
  os::Semaphore first;
  os::Semaphore second;
  const std::array<os::Semaphore*, 2> both = {&first, &second};
  second.Release();
  first.Release();
  EXPECT_EQ(os::WaitAny(both, milliseconds(0)), 0U);
  EXPECT_EQ(os::WaitAny(both, milliseconds(0)), 1U);
  EXPECT_EQ(os::WaitAny(both, milliseconds(1)), std::nullopt);
}

TEST(WaitAny, WakesForEachOfItsSemaphoresAndTheLongestTimeOutDoesNotOverflow) {
  std::array<os::Semaphore, 3> semaphores;
  const std::array<os::Semaphore*, 3> all = {&semaphores[0], &semaphores[1], &semaphores[2]};
  for (std::size_t i = 0; i < semaphores.size(); ++i) {
    const std::jthread releaser([&] {
      os::Sleep(milliseconds(10));
      semaphores[i].Release();
    });
    EXPECT_EQ(os::WaitAny(all, milliseconds::max()), i);
  }
}

// The two threads take turns with a plain number: a lost wake hangs, a missing barrier is a race.
TEST(Semaphore, HandsOverBetweenThreadsWithWhatWasWritten) {
  constexpr int kTurns = 2000;
  os::Semaphore ping;
  os::Semaphore pong;
  int turns = 0;
  std::thread other([&] {
    const std::array<os::Semaphore*, 1> only = {&ping};
    for (int i = 0; i < kTurns; ++i) {
      if (!os::WaitAny(only, milliseconds(5000))) return;
      ++turns;
      pong.Release();
    }
  });
  int answered = 0;
  for (int i = 0; i < kTurns; ++i) {
    ++turns;
    ping.Release();
    if (!pong.AcquireFor(milliseconds(5000))) break;
    ++answered;
  }
  other.join();
  EXPECT_EQ(answered, kTurns);
  EXPECT_EQ(turns, 2 * kTurns);
}

TEST(Semaphore, EachSignalReachesExactlyOneOfManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kSignals = 400;
  os::Semaphore signal;
  os::Semaphore taken;
  os::Semaphore stop;
  std::atomic<int> received = 0;
  std::vector<std::jthread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      const std::array<os::Semaphore*, 2> both = {&signal, &stop};
      while (os::WaitAny(both, milliseconds(5000)) == 0U) {
        ++received;
        taken.Release();
      }
      stop.Release();
    });
  }
  for (int i = 0; i < kSignals; ++i) {
    signal.Release();
    EXPECT_TRUE(taken.AcquireFor(milliseconds(5000)));
  }
  stop.Release();
  threads.clear();
  EXPECT_EQ(received, kSignals);
}

TEST(Ticks, CountMilliseconds) {
  const std::uint32_t start = os::TickCount();
  os::Sleep(milliseconds(60));
  const std::uint32_t passed = os::TickCount() - start;
  EXPECT_GE(passed, 40U);
  EXPECT_LT(passed, 5000U);
}

}  // namespace
