// Semaphores that a thread can wait for together, ticks and sleeps.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace os {

/// A binary semaphore, initially not signalled. Every operation may be called from any thread,
/// and must have ended everywhere before the semaphore goes.
class Semaphore {
 public:
  Semaphore();
  ~Semaphore();
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  /// Signals the semaphore; no effect while it is signalled already (its maximum is 1).
  void Release();
  /// Takes the signal if there is one; never waits.
  bool TryAcquire();
  /// Waits without limit and takes the signal.
  void Acquire();
  /// Waits at most so long; false on time-out.
  bool AcquireFor(std::chrono::milliseconds timeout);

 private:
  friend std::optional<std::size_t> WaitAny(std::span<Semaphore* const>, std::chrono::milliseconds);
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Waits until one of the semaphores is signalled and takes that one signal; when several are, the
/// first in the order given. Returns its index, or nothing after the time-out. At most 64
/// semaphores.
std::optional<std::size_t> WaitAny(std::span<Semaphore* const> semaphores,
                                   std::chrono::milliseconds timeout);

/// Milliseconds since some moment before the process started; wraps after 49.7 days.
std::uint32_t TickCount();

void Sleep(std::chrono::milliseconds duration);

}  // namespace os
