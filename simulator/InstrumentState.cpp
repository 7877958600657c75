#include "simulator/InstrumentState.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace simulator {

namespace {

[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...) {
  char text[160];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return length < 0 ? std::string() : std::string(text);
}

std::string OnOff(bool on) { return on ? "on" : "off"; }

/// Their number and the first of them, each as `describe` puts it: "2 pulses: 100 + 900, 50 + 0".
template <typename Entry, typename Describe>
std::string DescribeList(const std::vector<Entry>& entries, const char* what, Describe describe) {
  constexpr std::size_t kShown = 8;
  std::string text = std::to_string(entries.size()) + " " + what;
  for (std::size_t i = 0; i < entries.size() && i < kShown; ++i) {
    text += (i == 0 ? ": " : ", ") + describe(entries[i]);
  }
  return entries.size() > kShown ? text + " ..." : text;
}

std::string DescribeAxis(const Axis& axis, const char* unit) {
  switch (axis.mode) {
    case AxisMode::kSweep:
      return Format("sweep from %.12g %s by %.12g, %u points", axis.start, unit, axis.step,
                    axis.points);
    case AxisMode::kList:
      return "list of " +
             DescribeList(axis.list, unit, [](double value) { return Format("%.12g", value); });
    default:
      return Format("%.12g %s", axis.start, unit);
  }
}

std::string DescribeGroups(const std::array<TriggerGroup, 2>& groups) {
  std::string text;
  for (const TriggerGroup& group : groups) {
    text += Format("%scode %u, edge %u, width %u, flags %u %u", text.empty() ? "" : "; ",
                   static_cast<unsigned>(group.code), static_cast<unsigned>(group.edge),
                   static_cast<unsigned>(group.width), static_cast<unsigned>(group.flag),
                   static_cast<unsigned>(group.last));
  }
  return text;
}

std::string DescribePulses(const PulseTrain& train) {
  return Format("%s, %s, %s, ", OnOff(train.mode == 2).c_str(),
                train.source == 2 ? "external" : "internal", train.inverse ? "inverse" : "normal") +
         DescribeList(train.pulses, "pulses of width + gap in ns",
                      [](const Pulse& pulse) { return Format("%u + %u", pulse.width, pulse.gap); });
}

}  // namespace

std::vector<double> Axis::Values() const {
  if (mode == AxisMode::kList) return list;
  std::vector<double> values(points);
  for (std::uint32_t i = 0; i < points; ++i) values[i] = start + i * step;
  return values;
}

std::vector<StateLine> DescribeState(const InstrumentState& state) {
  return {
      {"output", OnOff(state.output_enabled)},
      {"frequency", DescribeAxis(state.frequency, "Hz")},
      {"level", DescribeAxis(state.level, "dBm")},
      {"attenuator mode", Format("%u", state.attenuator_mode)},
      {"level settings", Format("%g, %g", state.level_settings[0], state.level_settings[1])},
      {"dwell", Format("%u ns", state.dwell)},
      {"averaging", Format("%u", static_cast<unsigned>(state.averaging))},
      {"feature mask", Format("0x%04X", static_cast<unsigned>(state.feature_mask))},
      {"trigger input", DescribeGroups(state.trigger_input)},
      {"trigger output", DescribeGroups(state.trigger_output)},
      {"pulse train", DescribePulses(state.pulses)},
      {"sync generator", Format("width %u ns, off time %u ns, delay %u ns", state.sync_width,
                                state.sync_off_time, state.sync_delay)},
      {"reference",
       Format("%s, %.12g Hz", OnOff(state.reference_enabled).c_str(), state.reference_frequency)},
      {"phase delay", Format("%g", state.phase_delay)},
      {"compensation mode", Format("%u", static_cast<unsigned>(state.compensation_mode))},
      {"RF button", state.rf_button ? "pressed" : "released"},
      {"PLL", state.pll_locked ? "locked" : "unlocked"},
      {"ERG", state.erg_good ? "good" : "fault"},
      {"level state", state.level_settled ? "settled" : "not settled"},
      {"sweeps", std::to_string(state.sweeps)},
  };
}

std::vector<StateLine> DescribeChanges(const InstrumentState& before,
                                       const InstrumentState& after) {
  const std::vector<StateLine> old_lines = DescribeState(before);
  std::vector<StateLine> changes;
  for (const StateLine& line : DescribeState(after)) {
    if (std::find(old_lines.begin(), old_lines.end(), line) == old_lines.end()) {
      changes.push_back(line);
    }
  }
  return changes;
}

}  // namespace simulator
