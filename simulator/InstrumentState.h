// The settings of the instrument as it holds them.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace simulator {

enum class AxisMode { kFixed, kSweep, kList };

/// Frequency or level of the source. In a sweep the points are start, start + step ...
struct Axis {
  AxisMode mode = AxisMode::kFixed;
  double start = 0.0;  ///< Hz or dBm; the value of a fixed axis
  double step = 0.0;
  std::uint32_t points = 1;
  std::vector<double> list;

  [[nodiscard]] std::vector<double> Values() const;
  [[nodiscard]] double Stop() const { return start + (points - 1) * step; }
};

/// One of the groups of the trigger input or output.
struct TriggerGroup {
  std::uint8_t code = 0;   ///< input: 0 free, 1 sweep, 2 and 3 point by point, 4 software, 5 sync
  std::uint8_t edge = 0;   ///< input: falling edge; output: inverse
  std::uint8_t width = 0;  ///< output: pulse width, us
  std::uint8_t flag = 0;
  std::uint8_t last = 0;
  friend bool operator==(const TriggerGroup&, const TriggerGroup&) = default;
};

struct Pulse {
  std::uint32_t width = 0;  ///< ns
  std::uint32_t gap = 0;    ///< ns, after the pulse
  friend bool operator==(const Pulse&, const Pulse&) = default;
};

struct PulseTrain {
  std::uint32_t mode = 0;    ///< 2 on, 0 off
  std::uint32_t source = 3;  ///< 3 internal, 2 external
  bool inverse = false;
  std::vector<Pulse> pulses;
};

struct InstrumentState {
  Axis frequency;  ///< Hz
  Axis level;      ///< dBm
  bool output_enabled = false;
  std::uint32_t attenuator_mode = 0;
  std::array<double, 2> level_settings{};  ///< the two that travel with the level

  std::uint32_t dwell_selector = 0;
  std::uint32_t dwell = 0;  ///< ns a point
  std::uint16_t feature_mask = 0xFFFF;
  std::uint8_t averaging = 1;  ///< 1 to 14

  std::array<TriggerGroup, 2> trigger_input;
  std::array<TriggerGroup, 2> trigger_output;
  PulseTrain pulses;
  std::uint32_t sync_width = 0;     ///< ns
  std::uint32_t sync_off_time = 0;  ///< ns
  std::uint32_t sync_delay = 0;     ///< ns

  bool reference_enabled = false;
  double reference_frequency = 10e6;  ///< Hz
  double phase_delay = 0.0;
  std::uint16_t compensation_mode = 0;  ///< 0 DC, 1 once, 2 auto, 3 band, 4 AC
  /// Settings without a name, by identifier.
  std::map<std::uint16_t, std::vector<double>> unnamed;

  bool rf_button = false;  ///< pressed
  bool pll_locked = true;
  bool erg_good = true;
  bool level_settled = true;

  std::uint64_t sweeps = 0;  ///< data blocks delivered
};

/// A setting as a person reads it.
struct StateLine {
  std::string name;
  std::string value;
  friend bool operator==(const StateLine&, const StateLine&) = default;
};
/// All settings, always the same names in one order. Of lists and pulse trains, their size and the
/// first entries.
std::vector<StateLine> DescribeState(const InstrumentState& state);

/// Those whose value is another one than before.
std::vector<StateLine> DescribeChanges(const InstrumentState& before, const InstrumentState& after);

}  // namespace simulator
