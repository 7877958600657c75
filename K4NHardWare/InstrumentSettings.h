// The settings that the driver keeps for one instrument: what was last sent, in the instrument's
// own codes and units. Getters answer from here; a snapshot of it travels with every measurement
// block.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "measurement/TraceConversion.h"

inline constexpr std::size_t kChannelCount = 3;

/// What the axes of the generator do.
enum class SweepMode : std::uint32_t {
  kContinuousWave = 0,
  kPowerStep = 1,
  kFrequencyStep = 2,
  kList = 3,
};

/// What the instrument is: 1 a generator without detectors, 18 a scalar analyser, 2 an older one
/// whose readings are scaled.
enum class InstrumentKind : std::uint32_t { kGenerator = 1, kScaledReadings = 2, kAnalyser = 18 };

/// The source of a sweep trigger; same values as the COM enumeration.
enum class TriggerSource : std::uint32_t { kImmediate = 0, kExternal = 1, kSoftware = 2 };

/// The trigger of the sweep, copied whole between the COM layer and the manager.
struct SweepTriggerSettings {
  std::uint32_t source = static_cast<std::uint32_t>(TriggerSource::kSoftware);
  std::uint8_t action = 0;          ///< 0 switch, 1 measure
  std::uint8_t sync_detection = 0;  ///< 0 rise, 1 fall
};

/// The mode in which the trigger output gives nothing.
inline constexpr std::uint32_t kNoTriggerOutput = 0;

/// The trigger output, copied whole between the COM layer and the manager.
struct TriggerOutputSettings {
  std::uint32_t mode = 1;      ///< instrument code 0..6
  double width = 1.0;          ///< microseconds
  std::uint32_t polarity = 0;  ///< 0 normal, 1 inverse
  std::uint8_t enabled = 0;
};

/// The synchronisation pulse generator; nanoseconds.
struct SyncGeneratorSettings {
  double width = 0.0;
  double period = 0.0;
  double delay = 0.0;
};

/// The settings that go with every programming of the power axis. `level_control` is the RF output
/// switch: the output is on exactly when it is 1. The two further settings are passed through as
/// the instrument reported them.
struct LevelSettings {
  std::uint32_t level_control = 0;
  std::uint32_t atten_mode = 0;  ///< 0: no selectable modes; 2..5
  std::uint32_t further_1 = 0;
  std::uint32_t further_2 = 0;
};

/// A stepped axis: hertz, or dBm and dB.
struct StepSettings {
  double start = 0.0;
  double stop = 0.0;
  double step = 0.0;
};

/// Everything that the getters answer from and that a block's snapshot copies. The initial values
/// are the defaults that a new connection starts from.
struct InstrumentSettings {
  SweepMode sweep_mode = SweepMode::kContinuousWave;
  double cw_frequency = 1e7;  ///< Hz
  double cw_level = -60.0;    ///< dBm
  StepSettings frequency_step{1e7, 4e9, 8e6};
  bool frequency_step_configured = false;
  StepSettings power_step{-60.0, -50.0, 1.0};
  double dwell = 0.0;  ///< nanoseconds
  SweepTriggerSettings sweep_trigger;
  bool single_step = false;
  bool ext_pwr_ctrl = false;  ///< set only while external power control is being switched
  LevelSettings level;
  bool averaging_enabled = true;
  std::int32_t averaging = 3;
  bool ext_ref_enabled = false;
  double ext_ref_frequency = 1e7;  ///< Hz
  std::int32_t ext_ref_phase_delay = 0;
  std::uint32_t compensation_mode = 0;
  TriggerOutputSettings trigger_output;
  SyncGeneratorSettings sync_generator;
  std::array<ChannelTransform, kChannelCount> channels;  ///< offset 0, multiplier 1, divider 1
  std::string serial_number;
  std::string instrument_type;
};

/// The pulse generator and the pulse modulator; nanoseconds.
struct PulseSettings {
  double width = 1.0;
  double period = 0.0;
  bool double_enabled = false;
  double double_delay = 0.0;
  bool packet_enabled = false;
  std::vector<double> packet_widths;
  std::vector<double> packet_gaps;
  bool modulation_enabled = false;
  std::uint32_t modulation_source = 0;  ///< 0 internal, 1 external
  bool modulation_inverse = false;
  bool modulation_available = true;
};
