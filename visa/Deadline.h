// How long an operation may take.
#pragma once

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdint>

#include "visa/Visa.h"

namespace zevisa {

/// Counts from the first question, so that an operation that need not wait reads no clock.
class Deadline {
 public:
  static constexpr int kForever = -1;

  /// Milliseconds; VI_TMO_INFINITE has no end.
  explicit Deadline(std::uint32_t milliseconds) : milliseconds_(milliseconds) {}

  /// Milliseconds left, rounded up: 0 when time is over, kForever without a limit.
  int Remaining() {
    if (milliseconds_ == VI_TMO_INFINITE) return kForever;
    if (milliseconds_ == 0) return 0;
    const auto now = std::chrono::steady_clock::now();
    if (!started_) end_ = now + std::chrono::milliseconds(milliseconds_);
    started_ = true;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end_ - now).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX));
  }

  [[nodiscard]] bool IsOver() { return Remaining() == 0; }

  /// An equal share of what is left, for one of so many attempts.
  Deadline Share(std::size_t attempts) {
    const int left = Remaining();
    return left == kForever
               ? *this
               : Deadline(static_cast<std::uint32_t>(left) / static_cast<std::uint32_t>(attempts));
  }

  /// The same end, but no later than in so many milliseconds.
  Deadline Capped(std::uint32_t milliseconds) {
    const int left = Remaining();
    return Deadline(left == kForever ? milliseconds
                                     : std::min(static_cast<std::uint32_t>(left), milliseconds));
  }

 private:
  std::uint32_t milliseconds_;
  bool started_ = false;
  std::chrono::steady_clock::time_point end_{};
};

}  // namespace zevisa
