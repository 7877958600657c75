// Identity, state and reference settings of the instrument.
#include <cmath>

#include "K4NHardWare/K4NManagerOperation.h"

namespace {

constexpr const char* kSerialNumberFile = "\\FRAM\\SERIAL.TXT";
constexpr const char* kTypeFile = "\\FRAM\\TYPE.TXT";

constexpr std::uint32_t kSoftwareOutput = 6;  // trigger output codes

}  // namespace

/// Kept: a number that the instrument answers itself ends in "*", one from its file does not.
Status CK4NManager::GetSerialNumber(std::string& serial_number) {
  return Guarded([&] {
    std::string text;
    Status result = model_->QuerySerialNumber(text);
    if (IsSuccess(result)) {
      text += '*';
    } else if (result == status::kInstrumentNotSupported || result == status::kRefused) {
      result = model_->ReadInstrumentFile(kSerialNumberFile, text);
    }
    if (result < 0) model_->Recover();
    settings_.With([&](InstrumentSettings& live) { live.serial_number = text; });
    serial_number = std::move(text);
    return result;
  });
}

Status CK4NManager::GetInstrumentType(std::string& type) {
  return Guarded([&] {
    std::string text;
    const Status result = model_->ReadInstrumentFile(kTypeFile, text);
    if (result < 0) model_->Recover();
    settings_.With([&](InstrumentSettings& live) { live.instrument_type = text; });
    type = std::move(text);
    return result;
  });
}

/// What the worker knows while it measures, otherwise what the instrument answers.
template <typename Read>
Status CK4NManager::ReadState(std::atomic<bool>& state, Site site, bool& value, Read&& read,
                              Told told) {
  if (!connected_) return status::kNoSession;
  if (worker_.IsMeasuring()) {
    value = told == Told::kOnce ? state.exchange(true) : state.load();
    return status::kOk;
  }
  return Guarded([&] {
    bool answer = false;
    const Status result = Record(site, std::forward<Read>(read)(answer));
    if (!IsSuccess(result)) return result;
    state = told == Told::kOnce || answer;
    value = answer;
    return status::kOk;
  });
}

Status CK4NManager::GetRfButton(bool& pressed) {
  return ReadState(worker_.state().rf_button, Site::kRfButton, pressed,
                   [this](bool& answer) { return model_->ReadRfButton(answer); });
}

Status CK4NManager::GetPllState(bool& locked) {
  return ReadState(worker_.state().pll_locked, Site::kPllState, locked,
                   [this](bool& answer) { return model_->ReadPllState(answer); });
}

/// Kept: a fault is told once, then the state counts as good until the next fault. The worker may
/// note one at any moment, so that taking it is one exchange: none is lost and none told twice.
Status CK4NManager::GetErgState(bool& good) {
  return ReadState(
      worker_.state().erg_good, Site::kErgState, good,
      [this](bool& answer) { return model_->ReadErgState(answer); }, Told::kOnce);
}

Status CK4NManager::GetLevelState(bool& settled) {
  return ReadState(worker_.state().level_settled, Site::kLevelState, settled,
                   [this](bool& answer) { return model_->ReadLevelState(answer); });
}

/// The mode is kept also when the instrument refuses it.
Status CK4NManager::SetAttenMode(std::uint32_t mode) {
  return Guarded([&] {
    settings_.With([&](InstrumentSettings& live) { live.level.atten_mode = mode; });
    const Status result = Record(Site::kAttenMode, ApplyPowerAxis(std::nullopt));
    return IsSuccess(result) ? status::kOk : result;
  });
}

Status CK4NManager::GetAttenMode(std::uint32_t& mode) const {
  return Cached([&](const InstrumentSettings& live) { mode = live.level.atten_mode; });
}

/// Both values are kept also when the instrument refuses them.
Status CK4NManager::SetExtRefGen(bool enabled, double frequency) {
  return Guarded([&] {
    const Status result =
        Record(Site::kExtRefGen, model_->SetExternalReference(enabled, frequency));
    settings_.With([&](InstrumentSettings& live) {
      live.ext_ref_enabled = enabled;
      live.ext_ref_frequency = frequency;
    });
    return result;
  });
}

Status CK4NManager::GetExtRefGen(bool& enabled, double& frequency) const {
  return Cached([&](const InstrumentSettings& live) {
    enabled = live.ext_ref_enabled;
    frequency = live.ext_ref_frequency;
  });
}

Status CK4NManager::SetExtRefPhaseDelay(std::int32_t delay) {
  return Guarded([&] {
    double value = delay;
    const Status result = Record(Site::kExtRefPhaseDelay, model_->SetPhaseDelay(value));
    if (!IsSuccess(result)) return result;
    settings_.With([&](InstrumentSettings& live) {
      live.ext_ref_phase_delay = static_cast<std::int32_t>(std::lround(value));
    });
    return status::kOk;
  });
}

Status CK4NManager::GetExtRefPhaseDelay(std::int32_t& delay) const {
  return Cached([&](const InstrumentSettings& live) { delay = live.ext_ref_phase_delay; });
}

/// Kept: the flag marks the switching, not a mode. It reads false after a success, and true only
/// after a call whose trigger step failed.
Status CK4NManager::SetExtPwrCtrl(bool enabled) {
  return Guarded([&] {
    InstrumentSettings settings = settings_.With([](InstrumentSettings& live) {
      live.ext_pwr_ctrl = true;
      return live;
    });
    settings.sweep_trigger.source =
        static_cast<std::uint32_t>(enabled ? TriggerSource::kSoftware : TriggerSource::kImmediate);
    const Status triggered = ProgramSweepTrigger(settings.sweep_trigger, settings.single_step);
    leave_worker_paused_ = false;
    if (!IsSuccess(triggered)) return triggered;

    settings.trigger_output.mode = enabled ? kSoftwareOutput : kNoTriggerOutput;
    const Status result = ProgramTriggerOutput(settings.trigger_output);
    settings_.With([](InstrumentSettings& live) { live.ext_pwr_ctrl = false; });
    return result;
  });
}

Status CK4NManager::GetExtPwrCtrl(bool& enabled) const {
  return Cached([&](const InstrumentSettings& live) { enabled = live.ext_pwr_ctrl; });
}

/// The mode is kept also when the instrument refuses it.
Status CK4NManager::SetCompensMode(std::uint32_t mode) {
  return Guarded([&] {
    const Status result = Record(Site::kCompensMode, model_->SetCompensationMode(mode));
    settings_.With([&](InstrumentSettings& live) { live.compensation_mode = mode; });
    return result;
  });
}

Status CK4NManager::GetCompensMode(std::uint32_t& mode) const {
  return Cached([&](const InstrumentSettings& live) { mode = live.compensation_mode; });
}
