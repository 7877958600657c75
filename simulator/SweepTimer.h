// When the sweep in progress ends: its trigger and its time, without a clock of its own.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace simulator {

/// What a sweep takes.
struct SweepPlan {
  std::uint32_t points = 1;
  std::chrono::nanoseconds point_time{0};
  enum class Start {
    kAtOnce,       ///< as soon as somebody asks for data
    kTrigger,      ///< the whole of it after a trigger
    kEachTrigger,  ///< a point after each trigger
  } start = Start::kAtOnce;
};

/// One sweep after another; each is delivered once. A sweep that ended before anybody asked waits.
class SweepTimer {
 public:
  using Clock = std::chrono::steady_clock;

  /// New settings: what was measured so far is void.
  void Restart(const SweepPlan& plan);
  /// Somebody waits for the data.
  void Request(Clock::time_point now);
  /// Nobody waits any more: a sweep that had started by the request alone is given up.
  void Cancel();
  /// A pulse at the trigger connector.
  void Trigger(Clock::time_point now);
  /// The end of the sweep; none while it waits for a trigger or for a request.
  [[nodiscard]] std::optional<Clock::time_point> End() const { return end_; }
  /// The data are handed over: the next sweep begins.
  void Delivered();

 private:
  SweepPlan plan_;
  std::uint32_t triggered_points_ = 0;
  std::optional<Clock::time_point> end_;
};

}  // namespace simulator
