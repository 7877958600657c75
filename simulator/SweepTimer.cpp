#include "simulator/SweepTimer.h"

namespace simulator {

void SweepTimer::Restart(const SweepPlan& plan) {
  plan_ = plan;
  Delivered();
}

void SweepTimer::Request(Clock::time_point now) {
  if (plan_.start == SweepPlan::Start::kAtOnce && !end_) {
    end_ = now + plan_.points * plan_.point_time;
  }
}

void SweepTimer::Cancel() {
  if (plan_.start == SweepPlan::Start::kAtOnce) end_.reset();
}

void SweepTimer::Trigger(Clock::time_point now) {
  if (plan_.start == SweepPlan::Start::kAtOnce || end_) return;
  const bool whole = plan_.start == SweepPlan::Start::kTrigger;
  triggered_points_ += whole ? plan_.points : 1;
  if (triggered_points_ >= plan_.points) end_ = now + (whole ? plan_.points : 1) * plan_.point_time;
}

void SweepTimer::Delivered() {
  triggered_points_ = 0;
  end_.reset();
}

}  // namespace simulator
