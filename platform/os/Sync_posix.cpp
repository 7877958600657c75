#include <time.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "platform/os/Sync.h"

namespace os {

namespace {

// A longer time-out is cut: the clock could not tell its end.
constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24 * 365);

/// A thread that waits for one or more semaphores.
struct Waiter {
  std::mutex mutex;
  std::condition_variable condition;
  bool woken = false;
};

}  // namespace

struct Semaphore::Impl {
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
  const std::lock_guard lock(impl_->mutex);
  impl_->signalled = true;
  for (Waiter* const waiter : impl_->waiters) {
    const std::lock_guard waiter_lock(waiter->mutex);
    waiter->woken = true;
    waiter->condition.notify_one();
  }
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

  const auto deadline = std::chrono::steady_clock::now() + std::min(timeout, kLongest);
  Waiter waiter;
  for (Semaphore* const semaphore : semaphores) semaphore->impl_->Add(waiter);
  std::optional<std::size_t> taken;
  for (bool in_time = true; !(taken = take_one()) && in_time;) {
    std::unique_lock lock(waiter.mutex);
    in_time = waiter.condition.wait_until(lock, deadline, [&] { return waiter.woken; });
    waiter.woken = false;
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
