// The settings that the driver keeps for one instrument: the values last sent, in the instrument's
// own codes and units. Getters read them; each measurement block is stored with a copy of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "measurement/DataBlock.h"
#include "measurement/TraceConversion.h"

namespace k4n {

/// What the axes of the generator do.
enum class SweepMode : std::uint32_t {
  kContinuousWave = 0,
  kPowerStep = 1,
  kFrequencyStep = 2,
  kList = 3,
};

/// The source of a sweep trigger. A client may pass any number: an unknown one is refused.
enum class TriggerSource { kImmediate, kExternal, kSoftware, kUnknown };

/// What an external trigger does at each point.
enum class TriggerAction { kSwitch, kMeasure };

/// The trigger of the sweep, one for all kinds of sweep.
struct SweepTriggerSettings {
  TriggerSource source = TriggerSource::kSoftware;
  TriggerAction action = TriggerAction::kSwitch;
  bool falling_edge = false;  ///< of the sync source
  bool single_step = false;   ///< a trigger for each point
};

/// What the trigger output emits, by the instrument's codes; an instrument may answer others.
enum class TriggerOutputMode : std::uint32_t {
  kNone = 0,
  kSweep = 1,
  kNextStep = 2,
  kSingleStep = 3,
  kInput = 4,
  kSyncGenerator = 5,
  kSoftware = 6,
};

struct TriggerOutputSettings {
  TriggerOutputMode mode = TriggerOutputMode::kSweep;
  double width = 1.0;  ///< microseconds
  bool inverse = false;
  bool enabled = false;
};

/// The synchronisation pulse generator; nanoseconds.
struct SyncGeneratorSettings {
  double width = 0.0;
  double period = 0.0;
  double delay = 0.0;
};

/// The modes of the attenuator, by the instrument's codes; an instrument may answer others. One
/// that answers kNone has no selectable modes.
enum class AttenMode : std::uint32_t {
  kNone = 0,
  kMinHarmonics = 2,
  kOptimumSwr = 3,
  kOptimum = 4,
  kCare = 5,
};

/// The settings that go with every programming of the power axis. `level_control` is the RF output
/// switch: the output is on exactly when it is 1. The two further settings are passed through as
/// the instrument reported them.
struct LevelSettings {
  std::uint32_t level_control = 0;
  AttenMode atten_mode = AttenMode::kNone;
  std::uint32_t further_1 = 0;
  std::uint32_t further_2 = 0;
};

/// A stepped axis: hertz, or dBm and dB.
struct StepSettings {
  double start = 0.0;
  double stop = 0.0;
  double step = 0.0;
};

/// The reference that the instrument locks its frequency to.
struct ReferenceSettings {
  bool external = false;
  double frequency = 1e7;  ///< Hz
};

/// All settings that getters read and that are stored with a block. The initial values are the
/// defaults of a new session.
struct InstrumentSettings {
  SweepMode sweep_mode = SweepMode::kContinuousWave;
  double cw_frequency = 1e7;  ///< Hz
  double cw_level = -60.0;    ///< dBm
  StepSettings frequency_step{1e7, 4e9, 8e6};
  bool frequency_step_configured = false;
  StepSettings power_step{-60.0, -50.0, 1.0};
  double dwell = 0.0;  ///< nanoseconds
  SweepTriggerSettings sweep_trigger;
  bool ext_pwr_ctrl = false;  ///< set only while external power control is being switched
  LevelSettings level;
  bool averaging_enabled = true;
  std::int32_t averaging = 3;
  ReferenceSettings reference;
  std::int32_t ext_ref_phase_delay = 0;
  std::uint32_t compensation_mode = 0;  ///< any number: the instrument checks it
  TriggerOutputSettings trigger_output;
  SyncGeneratorSettings sync_generator;
  std::array<measurement::ChannelTransform, measurement::kTraceChannels>
      channels;  ///< offset 0, multiplier 1, divider 1
};

/// Where the pulse modulator takes its pulses from.
enum class PulseSource { kInternal, kExternal };

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
  PulseSource modulation_source = PulseSource::kInternal;
  bool modulation_inverse = false;
  bool modulation_available = true;
};

}  // namespace k4n
