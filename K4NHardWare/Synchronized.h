// A value that several threads use, and its lock.
#pragma once

#include <mutex>
#include <utility>

namespace k4n {

/// The lock is held only while the value is copied or a function looks at it. It is a leaf: such a
/// function takes no other lock and never waits for the instrument.
template <typename T>
class Synchronized {
 public:
  [[nodiscard]] T Copy() const {
    const std::lock_guard lock(mutex_);
    return value_;
  }

  void Set(T value) {
    const std::lock_guard lock(mutex_);
    value_ = std::move(value);
  }

  /// Calls the function with the value and returns what it returns.
  template <typename Function>
  decltype(auto) With(Function&& function) {
    const std::lock_guard lock(mutex_);
    return std::forward<Function>(function)(value_);
  }
  template <typename Function>
  decltype(auto) With(Function&& function) const {
    const std::lock_guard lock(mutex_);
    return std::forward<Function>(function)(value_);
  }

 private:
  mutable std::mutex mutex_;
  T value_{};
};

}  // namespace k4n
