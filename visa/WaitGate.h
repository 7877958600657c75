// A wait that another thread can end.
#pragma once

#include <mutex>

namespace zevisa {

/// Stands around the waiting of one direction of a socket. Wakeup is the system's object that the
/// wait watches beside the socket: Signal, Reset.
template <typename Wakeup>
class WaitGate {
 public:
  /// Before a wait; false when there shall be none any more.
  bool Enter() {
    const std::lock_guard guard(mutex_);
    waiting_ = !closed_;
    return waiting_;
  }

  /// After a wait; false when it was ended from outside.
  bool Leave() {
    const std::lock_guard guard(mutex_);
    waiting_ = false;
    if (closed_) return false;
    if (!aborted_) return true;
    aborted_ = false;
    wakeup_.Reset();
    return false;
  }

  /// Ends the wait in progress, if there is one; later ones are not touched.
  void Abort() {
    const std::lock_guard guard(mutex_);
    if (!waiting_) return;
    aborted_ = true;
    wakeup_.Signal();
  }

  /// Ends the wait in progress and every later one.
  void Close() {
    const std::lock_guard guard(mutex_);
    closed_ = true;
    wakeup_.Signal();
  }

  [[nodiscard]] const Wakeup& wakeup() const { return wakeup_; }

 private:
  std::mutex mutex_;
  bool waiting_ = false;
  bool aborted_ = false;
  bool closed_ = false;
  Wakeup wakeup_;
};

}  // namespace zevisa
