// Frequency and level of the source.
#include <algorithm>
#include <cmath>

#include "simulator/Settings.h"

namespace simulator {

namespace {

// Upper limit of an instrument that knows only the narrow frequency command.
constexpr double kNarrowMaximum = 4.001e9;

// How many points from `start` by `step` stay within the limits, at most `wanted`.
std::uint32_t FittingPoints(double start, double step, double wanted, double low, double high) {
  double points = std::clamp(std::floor(wanted), 1.0, static_cast<double>(kMaxPoints));
  if (step != 0.0) {
    // A millionth of a step: levels are not whole numbers of anything binary.
    const double room = (step > 0.0 ? high - start : start - low) / std::abs(step);
    points = std::min(points, std::floor(room + 1e-6) + 1.0);
  }
  return static_cast<std::uint32_t>(points);
}

}  // namespace

double Settings::ClampFrequency(double frequency) const {
  const double highest = options_.frequency_form == FrequencyForm::kNarrow
                             ? std::min(options_.max_frequency, kNarrowMaximum)
                             : options_.max_frequency;
  return std::clamp(frequency, std::min(options_.min_frequency, highest), highest);
}

double Settings::ClampLevel(double level) const {
  return std::clamp(RoundTo(level, options_.level_resolution), options_.min_level,
                    options_.max_level);
}

// Elements: start, points, step, stop; the first alone is a fixed frequency.
void Settings::SetFrequency(const Form& form, std::span<const double> values) {
  Axis& axis = state_.frequency;
  const double low = ClampFrequency(0.0);
  const double high = ClampFrequency(options_.max_frequency);
  axis.start = ClampFrequency(values[0]);
  axis.mode = AxisMode::kFixed;
  axis.points = 1;
  axis.step = 0.0;
  axis.list.clear();
  if (form.count > 1) {
    axis.mode = AxisMode::kSweep;
    axis.step = std::clamp(values[2], low - high, high - low);
    axis.points = FittingPoints(axis.start, axis.step, values[1], low, high);
  }
}

Settings::Values Settings::GetFrequency(const Form& form) const {
  const Axis& axis = state_.frequency;
  Values values{axis.start, static_cast<double>(axis.points), axis.step, axis.Stop()};
  values.resize(form.count);
  return values;
}

// Elements: output, attenuator mode, two settings, level; in a sweep also points, step, stop.
void Settings::SetLevel(const Form& form, std::span<const double> values) {
  state_.output_enabled = values[0] != 0.0;
  SetAttenuatorMode(values[1]);
  state_.level_settings = {values[2], values[3]};
  const bool sweep = form.count > 5;
  SetLevelAxis(values[4], sweep ? values[5] : 1.0, sweep ? values[6] : 0.0, sweep);
}

Settings::Values Settings::GetLevel(const Form& form) const {
  const Axis& axis = state_.level;
  Values values{state_.output_enabled ? 1.0 : 0.0,
                static_cast<double>(state_.attenuator_mode),
                state_.level_settings[0],
                state_.level_settings[1],
                axis.start,
                static_cast<double>(axis.points),
                axis.step,
                axis.Stop()};
  values.resize(form.count);
  return values;
}

// The older command's elements: output, level; in a sweep also points, step.
void Settings::SetShortLevel(const Form& form, std::span<const double> values) {
  state_.output_enabled = values[0] != 0.0;
  const bool sweep = form.count > 2;
  SetLevelAxis(values[1], sweep ? values[2] : 1.0, sweep ? values[3] : 0.0, sweep);
}

Settings::Values Settings::GetShortLevel(const Form& form) const {
  const Axis& axis = state_.level;
  Values values{state_.output_enabled ? 1.0 : 0.0, axis.start, static_cast<double>(axis.points),
                axis.step};
  values.resize(form.count);
  return values;
}

void Settings::SetLevelAxis(double level, double points, double step, bool sweep) {
  Axis& axis = state_.level;
  axis.mode = sweep ? AxisMode::kSweep : AxisMode::kFixed;
  axis.start = ClampLevel(level);
  axis.step = RoundTo(step, options_.level_resolution);
  axis.points =
      FittingPoints(axis.start, axis.step, points, options_.min_level, options_.max_level);
  axis.list.clear();
}

void Settings::SetAttenuatorMode(double mode) {
  if (options_.attenuator_mode != 0 && mode >= 2.0 && mode <= 5.0) {
    state_.attenuator_mode = static_cast<std::uint32_t>(mode);
  }
}

std::uint32_t Settings::SweepPoints() const {
  const auto count = [](const Axis& axis) {
    return axis.mode == AxisMode::kList ? static_cast<std::uint32_t>(axis.list.size())
                                        : axis.points;
  };
  // Each is at most kMaxPoints: the product fits 32 bits.
  return std::min(count(state_.frequency) * count(state_.level), kMaxPoints);
}

}  // namespace simulator
