// Sweep modes, steps, trigger and dwell, and the programming of the two axes.
#include <array>

#include "K4NHardWare/K4NManagerOperation.h"

namespace {

// What a list sweep runs on along an axis that has no list.
constexpr double kStandInFrequency = 1e7;  // Hz
constexpr double kStandInLevel = -60.0;    // dBm

constexpr auto kImmediate = static_cast<std::uint32_t>(TriggerSource::kImmediate);
constexpr auto kExternal = static_cast<std::uint32_t>(TriggerSource::kExternal);
constexpr auto kSoftware = static_cast<std::uint32_t>(TriggerSource::kSoftware);

/// The instrument's codes of the sweep trigger.
enum TriggerCode : std::uint32_t {
  kFreeRun = 0,
  kExternalSweep = 1,
  kExternalStep = 2,
  kExternalMeasure = 3,
  kTriggerLine = 4,
};

/// Nothing for a source that does not exist. A software source lets the instrument run freely: the
/// worker then reads one sweep at each trigger.
std::optional<std::uint32_t> CodeOf(const SweepTriggerSettings& trigger, bool single_step,
                                    bool ext_pwr_ctrl) {
  switch (trigger.source) {
    case kImmediate:
      return kFreeRun;
    case kExternal:
      if (!single_step) return kExternalSweep;
      return trigger.action != 0 ? kExternalMeasure : kExternalStep;
    case kSoftware:
      return ext_pwr_ctrl ? kTriggerLine : kFreeRun;
    default:
      return std::nullopt;
  }
}

/// What the instrument's code means for the settings; false for a code that it does not have.
bool TakeCode(std::uint32_t code, SweepTriggerSettings& trigger, bool& single_step) {
  switch (code) {
    case kFreeRun:
      if (trigger.source != kSoftware) trigger.source = kImmediate;
      return true;
    case kExternalSweep:
      trigger.source = kExternal;
      single_step = false;
      return true;
    case kExternalStep:
    case kExternalMeasure:
      trigger.source = kExternal;
      single_step = true;
      trigger.action = code == kExternalMeasure ? 1 : 0;
      return true;
    case kTriggerLine:
      trigger.source = kSoftware;
      return true;
    default:
      return false;
  }
}

}  // namespace

Status CK4NManager::SetSweepMode(SweepMode mode) {
  return Guarded([&] { return ProgramSweepMode(mode); });
}

Status CK4NManager::ProgramSweepMode(SweepMode mode) {
  block_.Discard();
  const auto exchange_mode = [this](SweepMode wanted) {
    return settings_.With(
        [wanted](InstrumentSettings& live) { return std::exchange(live.sweep_mode, wanted); });
  };
  const SweepMode previous = exchange_mode(mode);
  if (const Status power = ApplyPowerAxis(std::nullopt); power != status::kOk) {
    exchange_mode(previous);
    return power;
  }
  if (const Status frequency = ApplyFrequencyAxis(std::nullopt); frequency != status::kOk) {
    exchange_mode(previous);
    ApplyPowerAxis(std::nullopt);
    return frequency;
  }
  measurement_mode_ = mode;
  sweep_armed_ = true;

  InstrumentSettings settings = settings_.Copy();
  ProgramSweepTrigger(settings.sweep_trigger, settings.single_step);
  return status::kOk;
}

Status CK4NManager::GetSweepMode(SweepMode& mode) const {
  mode = settings_.With([](const InstrumentSettings& live) { return live.sweep_mode; });
  return status::kOk;
}

Status CK4NManager::SetFrequencyStep(double& start, double& stop, double& step) {
  return Guarded([&] {
    block_.Discard();
    settings_.With([&](InstrumentSettings& live) { live.frequency_step = {start, stop, step}; });
    const Status result =
        Record(Site::kFrequencyStep, ApplyFrequencyAxis(SweepMode::kFrequencyStep));
    if (!IsSuccess(result)) return result;
    const SweepMode mode = settings_.With([&](InstrumentSettings& live) {
      start = live.frequency_step.start;
      stop = live.frequency_step.stop;
      step = live.frequency_step.step;
      live.frequency_step_configured = true;
      return live.sweep_mode;
    });
    if (mode != SweepMode::kPowerStep) return result;
    return Record(Site::kFrequencyStepPower, ApplyPowerAxis(std::nullopt));
  });
}

Status CK4NManager::GetFrequencyStep(double& start, double& stop, double& step) const {
  return Cached([&](const InstrumentSettings& live) {
    start = live.frequency_step.start;
    stop = live.frequency_step.stop;
    step = live.frequency_step.step;
  });
}

Status CK4NManager::SetPowerStep(double& start, double& stop, double& step) {
  return Guarded([&] {
    block_.Discard();
    settings_.With([&](InstrumentSettings& live) { live.power_step = {start, stop, step}; });
    const Status result = Record(Site::kPowerStep, ApplyPowerAxis(SweepMode::kPowerStep));
    if (!IsSuccess(result)) return result;
    const SweepMode mode = settings_.With([&](const InstrumentSettings& live) {
      start = live.power_step.start;
      stop = live.power_step.stop;
      step = live.power_step.step;
      return live.sweep_mode;
    });
    if (mode != SweepMode::kFrequencyStep) return result;
    return Record(Site::kPowerStepFrequency, ApplyFrequencyAxis(std::nullopt));
  });
}

Status CK4NManager::GetPowerStep(double& start, double& stop, double& step) const {
  return Cached([&](const InstrumentSettings& live) {
    start = live.power_step.start;
    stop = live.power_step.stop;
    step = live.power_step.step;
  });
}

Status CK4NManager::SetSweepTrigger(SweepTriggerSettings& trigger, bool single_step) {
  return Guarded([&] { return ProgramSweepTrigger(trigger, single_step); });
}

/// Kept: after a source or an answer that does not exist the worker stays paused until the next
/// operation.
Status CK4NManager::ProgramSweepTrigger(SweepTriggerSettings& trigger, bool single_step) {
  block_.Discard();
  const bool ext_pwr_ctrl =
      settings_.With([](const InstrumentSettings& live) { return live.ext_pwr_ctrl; });
  const std::optional<std::uint32_t> code = CodeOf(trigger, single_step, ext_pwr_ctrl);
  if (!code) {
    leave_worker_paused_ = true;
    return status::kRefused;
  }
  TriggerElements elements{.code = *code,
                           .edge = trigger.sync_detection != 0,
                           .value = static_cast<std::uint8_t>(ext_pwr_ctrl ? 1 : 0),
                           .flag = 0,
                           .last = ext_pwr_ctrl ? 3U : 2U};
  const Status result = Record(Site::kSweepTrigger, model_->SetTriggerInput(0, elements));
  if (!IsSuccess(result)) return result;

  trigger.sync_detection = elements.edge ? 1 : 0;
  if (!TakeCode(elements.code, trigger, single_step)) {
    leave_worker_paused_ = true;
    return status::kRefused;
  }
  settings_.With([&](InstrumentSettings& live) {
    live.sweep_trigger = trigger;
    live.single_step = single_step;
  });
  return result;
}

Status CK4NManager::GetSweepTrigger(SweepTriggerSettings& trigger, bool& single_step) const {
  return Cached([&](const InstrumentSettings& live) {
    trigger = live.sweep_trigger;
    single_step = live.single_step;
  });
}

Status CK4NManager::SetDwell(double nanoseconds) {
  return Guarded([&] {
    const Status result = Record(Site::kDwell, model_->SetDwell(nanoseconds));
    if (IsSuccess(result)) {
      settings_.With([&](InstrumentSettings& live) { live.dwell = nanoseconds; });
    }
    return result;
  });
}

Status CK4NManager::GetDwell(double& nanoseconds) const {
  nanoseconds = settings_.With([](const InstrumentSettings& live) { return live.dwell; });
  return status::kOk;
}

void CK4NManager::RequestSoftwareTrigger() {
  Guarded([this] {
    worker_.RequestSoftwareTrigger();
    return status::kOk;
  });
}

/// Programs the frequency axis for the sweep mode. A request for another mode is tried first: the
/// instrument checks and corrects that mode's values.
Status CK4NManager::ApplyFrequencyAxis(std::optional<SweepMode> request) {
  const SweepMode mode =
      settings_.With([](const InstrumentSettings& live) { return live.sweep_mode; });
  const bool is_trial = request && *request != mode &&
                        !(*request == SweepMode::kContinuousWave && mode == SweepMode::kPowerStep);
  const Status trial = is_trial ? ProgramFrequencyAxis(*request) : status::kOk;
  const Status programmed = ProgramFrequencyAxis(mode);
  return trial != status::kOk ? trial : programmed;
}

/// As above. Trials run with the output off; while it is off they are all that is sent.
Status CK4NManager::ApplyPowerAxis(std::optional<SweepMode> request) {
  const auto [mode, output_on] = settings_.With([](const InstrumentSettings& live) {
    return std::pair(live.sweep_mode, live.level.level_control == 1);
  });
  const bool is_trial =
      request && *request != mode &&
      !(*request == SweepMode::kContinuousWave && mode == SweepMode::kFrequencyStep);
  const Status trial = is_trial ? ProgramPowerAxis(*request, true) : status::kOk;
  if (is_trial && !output_on) return trial;
  const Status programmed = ProgramPowerAxis(mode, false);
  return trial != status::kOk ? trial : programmed;
}

Status CK4NManager::ProgramFrequencyAxis(SweepMode mode) {
  InstrumentSettings settings = settings_.Copy();
  Status result = status::kOk;
  switch (mode) {
    case SweepMode::kFrequencyStep: {
      auto& [start, stop, step] = settings.frequency_step;
      result = model_->SetFrequencySweep(start, stop, step);
      break;
    }
    case SweepMode::kList:
      result =
          ProgramList(ListAxis::kFrequency, frequency_list_, kStandInFrequency, settings.level);
      break;
    default:
      result = model_->SetCwFrequency(settings.cw_frequency);
  }
  if (IsSuccess(result)) {
    settings_.With([&](InstrumentSettings& live) {
      live.frequency_step = settings.frequency_step;
      live.cw_frequency = settings.cw_frequency;
    });
  }
  return Record(Site::kFrequencyAxis, result);
}

Status CK4NManager::ProgramPowerAxis(SweepMode mode, bool trial) {
  InstrumentSettings settings = settings_.Copy();
  const std::uint32_t output = settings.level.level_control;
  if (trial) settings.level.level_control = 0;
  Status result = status::kOk;
  switch (mode) {
    case SweepMode::kPowerStep: {
      auto& [start, stop, step] = settings.power_step;
      result = model_->SetPowerSweep(settings.level, start, stop, step);
      break;
    }
    case SweepMode::kList:
      result = ProgramList(ListAxis::kPower, power_list_, kStandInLevel, settings.level);
      break;
    default:
      result = model_->SetOutputLevel(settings.level, settings.cw_level);
  }
  if (IsSuccess(result)) {
    if (trial) settings.level.level_control = output;
    settings_.With([&](InstrumentSettings& live) {
      live.level = settings.level;
      live.cw_level = settings.cw_level;
      live.power_step = settings.power_step;
    });
  }
  return Record(Site::kPowerAxis, result);
}

/// Sends a list, or one value in its place, and keeps what the instrument made of it.
Status CK4NManager::ProgramList(ListAxis axis, Synchronized<SweepList>& list, double stand_in,
                                const LevelSettings& level) {
  const SweepList present = list.Copy();
  if (present == nullptr) {
    std::array<double, 1> value = {stand_in};
    return model_->TransferList(axis, value, level);
  }
  auto corrected = std::make_shared<std::vector<double>>(*present);
  const Status result = model_->TransferList(axis, *corrected, level);
  list.Set(std::move(corrected));
  return result;
}
