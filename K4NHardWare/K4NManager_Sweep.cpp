// Sweep modes, steps, trigger and dwell, and the programming of the two axes.
#include <array>

#include "K4NHardWare/K4NManagerOperation.h"

using namespace k4n;

namespace {

// Fixed values of a list sweep for an axis without a list.
constexpr double kStandInFrequency = 1e7;  // Hz
constexpr double kStandInLevel = -60.0;    // dBm

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
std::optional<std::uint32_t> TriggerCodeOf(const SweepTriggerSettings& trigger, bool ext_pwr_ctrl) {
  switch (trigger.source) {
    case TriggerSource::kImmediate:
      return kFreeRun;
    case TriggerSource::kExternal:
      if (!trigger.single_step) return kExternalSweep;
      return trigger.action == TriggerAction::kMeasure ? kExternalMeasure : kExternalStep;
    case TriggerSource::kSoftware:
      return ext_pwr_ctrl ? kTriggerLine : kFreeRun;
    default:
      return std::nullopt;
  }
}

/// Translates the instrument's code into the settings; false for an unknown code.
bool TakeTriggerCode(std::uint32_t code, SweepTriggerSettings& trigger) {
  switch (code) {
    case kFreeRun:
      if (trigger.source != TriggerSource::kSoftware) trigger.source = TriggerSource::kImmediate;
      return true;
    case kExternalSweep:
      trigger.source = TriggerSource::kExternal;
      trigger.single_step = false;
      return true;
    case kExternalStep:
    case kExternalMeasure:
      trigger.source = TriggerSource::kExternal;
      trigger.single_step = true;
      trigger.action = code == kExternalMeasure ? TriggerAction::kMeasure : TriggerAction::kSwitch;
      return true;
    case kTriggerLine:
      trigger.source = TriggerSource::kSoftware;
      return true;
    default:
      return false;
  }
}

}  // namespace

Status CK4NManager::SetSweepMode(SweepMode mode) {
  return Guarded([&] { return ProgramSweepMode(mode); });
}

CK4NManager::Outcome CK4NManager::ProgramSweepMode(SweepMode mode) {
  block_.Discard();
  const auto exchange_mode = [this](SweepMode wanted) {
    return settings_.With(
        [wanted](InstrumentSettings& live) { return std::exchange(live.sweep_mode, wanted); });
  };
  const SweepMode previous = exchange_mode(mode);
  if (const Status power = ApplyPowerAxis(std::nullopt); power != Status::kOk) {
    exchange_mode(previous);
    return power;
  }
  if (const Status frequency = ApplyFrequencyAxis(std::nullopt); frequency != Status::kOk) {
    exchange_mode(previous);
    Discard(ApplyPowerAxis(std::nullopt));  // back to the former mode
    return frequency;
  }
  measurement_mode_ = mode;
  sweep_armed_ = true;

  // Kept: the mode is set even if its trigger fails; that failure shows in the trail only.
  return {Status::kOk, ProgramSweepTrigger(GetSweepTrigger()).leaves_worker_paused};
}

SweepMode CK4NManager::GetSweepMode() const { return Cached(&InstrumentSettings::sweep_mode); }

Status CK4NManager::SetFrequencyStep(const StepSettings& step) {
  return Guarded([&] {
    block_.Discard();
    settings_.With([&](InstrumentSettings& live) { live.frequency_step = step; });
    const Status result =
        Record(Site::kFrequencyStep, ApplyFrequencyAxis(SweepMode::kFrequencyStep));
    if (!Succeeded(result)) return result;
    settings_.With([](InstrumentSettings& live) { live.frequency_step_configured = true; });
    if (GetSweepMode() != SweepMode::kPowerStep) return result;
    return Record(Site::kFrequencyStepPower, ApplyPowerAxis(std::nullopt));
  });
}

StepSettings CK4NManager::GetFrequencyStep() const {
  return Cached(&InstrumentSettings::frequency_step);
}

Status CK4NManager::SetPowerStep(const StepSettings& step) {
  return Guarded([&] {
    block_.Discard();
    settings_.With([&](InstrumentSettings& live) { live.power_step = step; });
    const Status result = Record(Site::kPowerStep, ApplyPowerAxis(SweepMode::kPowerStep));
    if (!Succeeded(result) || GetSweepMode() != SweepMode::kFrequencyStep) return result;
    return Record(Site::kPowerStepFrequency, ApplyFrequencyAxis(std::nullopt));
  });
}

StepSettings CK4NManager::GetPowerStep() const { return Cached(&InstrumentSettings::power_step); }

Status CK4NManager::SetSweepTrigger(const SweepTriggerSettings& trigger) {
  return Guarded([&] { return ProgramSweepTrigger(trigger); });
}

/// Kept: after an unknown source, or an unknown code in the answer, the worker stays paused until
/// the next operation.
CK4NManager::Outcome CK4NManager::ProgramSweepTrigger(SweepTriggerSettings trigger) {
  block_.Discard();
  const bool ext_pwr_ctrl = GetExtPwrCtrl();
  const std::optional<std::uint32_t> code = TriggerCodeOf(trigger, ext_pwr_ctrl);
  if (!code) return {Status::kRefused, true};
  TriggerElements elements{.code = *code,
                           .edge = trigger.falling_edge,
                           .value = static_cast<std::uint8_t>(ext_pwr_ctrl ? 1 : 0),
                           .flag = 0,
                           .last = ext_pwr_ctrl ? 3U : 2U};
  const Status result = Record(Site::kSweepTrigger, model_->SetTriggerInput(0, elements));
  if (!Succeeded(result)) return result;

  trigger.falling_edge = elements.edge;
  if (!TakeTriggerCode(elements.code, trigger)) return {Status::kRefused, true};
  settings_.With([&](InstrumentSettings& live) { live.sweep_trigger = trigger; });
  return result;
}

SweepTriggerSettings CK4NManager::GetSweepTrigger() const {
  return Cached(&InstrumentSettings::sweep_trigger);
}

Status CK4NManager::SetDwell(double nanoseconds) {
  return Guarded([&] {
    const Status result = Record(Site::kDwell, model_->SetDwell(nanoseconds));
    if (Succeeded(result)) {
      settings_.With([&](InstrumentSettings& live) { live.dwell = nanoseconds; });
    }
    return result;
  });
}

double CK4NManager::GetDwell() const { return Cached(&InstrumentSettings::dwell); }

void CK4NManager::RequestSoftwareTrigger() {
  Discard(Guarded([this] {
    worker_.RequestSoftwareTrigger();
    return Status::kOk;
  }));  // without a session there is nothing to trigger
}

/// Programs the frequency axis for the sweep mode. A request for another mode is tried first: the
/// instrument checks and corrects that mode's values.
Status CK4NManager::ApplyFrequencyAxis(std::optional<SweepMode> request) {
  const SweepMode mode = GetSweepMode();
  const bool is_trial = request && *request != mode &&
                        !(*request == SweepMode::kContinuousWave && mode == SweepMode::kPowerStep);
  const Status trial = is_trial ? ProgramFrequencyAxis(*request) : Status::kOk;
  const Status programmed = ProgramFrequencyAxis(mode);
  return trial != Status::kOk ? trial : programmed;
}

/// The same for the power axis. The trial is sent with the output off; while the output is off,
/// nothing else is sent.
Status CK4NManager::ApplyPowerAxis(std::optional<SweepMode> request) {
  const auto [mode, output_on] = settings_.With([](const InstrumentSettings& live) {
    return std::pair(live.sweep_mode, live.level.level_control == 1);
  });
  const bool is_trial =
      request && *request != mode &&
      !(*request == SweepMode::kContinuousWave && mode == SweepMode::kFrequencyStep);
  const Status trial = is_trial ? ProgramPowerAxis(*request, true) : Status::kOk;
  if (is_trial && !output_on) return trial;
  const Status programmed = ProgramPowerAxis(mode, false);
  return trial != Status::kOk ? trial : programmed;
}

Status CK4NManager::ProgramFrequencyAxis(SweepMode mode) {
  InstrumentSettings settings = settings_.Copy();
  Status result = Status::kOk;
  switch (mode) {
    case SweepMode::kFrequencyStep:
      result = model_->SetFrequencySweep(settings.frequency_step);
      break;
    case SweepMode::kList:
      result =
          ProgramList(ListAxis::kFrequency, frequency_list_, kStandInFrequency, settings.level);
      break;
    default:
      result = model_->SetCwFrequency(settings.cw_frequency);
  }
  if (Succeeded(result)) {
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
  Status result = Status::kOk;
  switch (mode) {
    case SweepMode::kPowerStep:
      result = model_->SetPowerSweep(settings.level, settings.power_step);
      break;
    case SweepMode::kList:
      result = ProgramList(ListAxis::kPower, power_list_, kStandInLevel, settings.level);
      break;
    default:
      result = model_->SetOutputLevel(settings.level, settings.cw_level);
  }
  if (Succeeded(result)) {
    if (trial) settings.level.level_control = output;
    settings_.With([&](InstrumentSettings& live) {
      live.level = settings.level;
      live.cw_level = settings.cw_level;
      live.power_step = settings.power_step;
    });
  }
  return Record(Site::kPowerAxis, result);
}

/// Sends a list, or a single value if it is empty, and stores the values as the instrument set
/// them.
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
