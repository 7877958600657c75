#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "platform/os/Sync.h"

namespace os {

namespace {

using Clock = std::chrono::steady_clock;  // CLOCK_MONOTONIC
constexpr Clock::time_point kNever = Clock::time_point::max();

// A longer time-out has no end: the clock could not tell it, and waiting without one costs less.
constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24 * 365);

// Threads at one semaphore; room for these is there before anybody waits, so that waiting needs no
// memory.
constexpr std::size_t kUsualWaiters = 4;

/// Where a thread sleeps that waits for one or more semaphores. The system's own call instead of a
/// condition variable: who is woken finds every lock free, so that handing over to another thread
/// and back, which every setting does, takes two calls a thread.
class Waiter {
 public:
  /// The next sleep ends at once. For one who sleeps already, Rouse must follow.
  void Mark() { woken_ = 1; }
  /// The waiter may have woken, and be gone, already: the system needs no more than the address.
  static void Rouse(Waiter* waiter) {
    syscall(SYS_futex, &waiter->woken_, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
  }

  /// May end without a reason. False when the time is over.
  bool SleepUntil(Clock::time_point deadline) {
    const auto since_boot = deadline.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(since_boot);
    const timespec end = {seconds.count(), (since_boot - seconds).count()};
    syscall(SYS_futex, &woken_, FUTEX_WAIT_BITSET_PRIVATE, 0, deadline == kNever ? nullptr : &end,
            nullptr, FUTEX_BITSET_MATCH_ANY);
    return woken_.exchange(0) != 0 || Clock::now() < deadline;
  }

 private:
  std::atomic<std::uint32_t> woken_ = 0;
  static_assert(sizeof woken_ == 4 && decltype(woken_)::is_always_lock_free);
};

}  // namespace

struct Semaphore::Impl {
  Impl() { waiters.reserve(kUsualWaiters); }

  std::mutex mutex;
  bool signalled = false;
  std::vector<Waiter*> waiters;  // each removes itself before it goes

  bool TryTake() {
    const std::lock_guard lock(mutex);
    return std::exchange(signalled, false);
  }
  void Add(Waiter& waiter) {
    const std::lock_guard lock(mutex);
    waiters.push_back(&waiter);
  }
  void Remove(Waiter& waiter) {
    const std::lock_guard lock(mutex);
    std::erase(waiters, &waiter);
  }
};

Semaphore::Semaphore() : impl_(std::make_unique<Impl>()) {}
Semaphore::~Semaphore() = default;

void Semaphore::Release() {
  Waiter* last = nullptr;  // mostly the only one: roused when it finds the lock free
  {
    const std::lock_guard lock(impl_->mutex);
    impl_->signalled = true;
    for (Waiter* const waiter : impl_->waiters) {
      waiter->Mark();
      if (last != nullptr) Waiter::Rouse(last);
      last = waiter;
    }
  }
  if (last != nullptr) Waiter::Rouse(last);
}

bool Semaphore::TryAcquire() { return impl_->TryTake(); }

void Semaphore::Acquire() {
  while (!AcquireFor(kLongest)) {
  }
}

bool Semaphore::AcquireFor(std::chrono::milliseconds timeout) {
  Semaphore* const self = this;
  return WaitAny({&self, 1}, timeout).has_value();
}

std::optional<std::size_t> WaitAny(std::span<Semaphore* const> semaphores,
                                   std::chrono::milliseconds timeout) {
  const auto take_one = [&]() -> std::optional<std::size_t> {
    for (std::size_t i = 0; i < semaphores.size(); ++i) {
      if (semaphores[i]->impl_->TryTake()) return i;
    }
    return std::nullopt;
  };
  if (auto taken = take_one()) return taken;

  const auto deadline = timeout < kLongest ? Clock::now() + timeout : kNever;
  Waiter waiter;
  for (Semaphore* const semaphore : semaphores) semaphore->impl_->Add(waiter);
  std::optional<std::size_t> taken;
  for (bool in_time = true; !(taken = take_one()) && in_time;) {
    in_time = waiter.SleepUntil(deadline);
  }
  for (Semaphore* const semaphore : semaphores) semaphore->impl_->Remove(waiter);
  return taken;
}

std::uint32_t TickCount() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(now.tv_sec) * 1000U +
                                    static_cast<std::uint64_t>(now.tv_nsec) / 1000000U);
}

void Sleep(std::chrono::milliseconds duration) { std::this_thread::sleep_for(duration); }

}  // namespace os
