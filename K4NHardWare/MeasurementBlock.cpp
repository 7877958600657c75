#include "K4NHardWare/MeasurementBlock.h"

namespace k4n {

namespace {

measurement::FrequencyPlan PlanOf(const InstrumentSettings& settings, const SweepList& list) {
  measurement::FrequencyPlan plan;
  plan.cw = settings.cw_frequency;
  if (settings.sweep_mode == SweepMode::kFrequencyStep) {
    plan.mode = measurement::FrequencyPlan::Mode::kStep;
    plan.start = settings.frequency_step.start;
    plan.step = settings.frequency_step.step;
  } else if (settings.sweep_mode == SweepMode::kList && list != nullptr) {
    plan.mode = measurement::FrequencyPlan::Mode::kList;
    plan.list = *list;
  }
  return plan;
}

}  // namespace

void MeasurementBlock::Store(std::span<const std::uint8_t> points,
                             measurement::ReadingFormat format,
                             const Synchronized<InstrumentSettings>& settings) {
  const std::lock_guard lock(mutex_);
  points_.assign(points.begin(), points.end());
  format_ = format;
  settings.With([this](const InstrumentSettings& live) { settings_ = live; });
  ready_ = true;
}

void MeasurementBlock::Discard() {
  const std::lock_guard lock(mutex_);
  ready_ = false;
}

bool MeasurementBlock::Convert(
    measurement::InstrumentKind kind, const SweepList& list,
    const std::array<measurement::ChannelCalibration, measurement::kTraceChannels>& channels,
    TraceMatrix& trace) {
  const std::lock_guard lock(mutex_);
  if (!ready_) return false;
  measurement::ConvertBlock({points_, format_, kind}, PlanOf(settings_, list), channels, trace);
  ready_ = false;
  return true;
}

}  // namespace k4n
