// Identity, state and reference settings of the instrument.
#include <cmath>

#include "K4NHardWare/K4NManagerOperation.h"

using namespace k4n;

namespace {

constexpr const char* kSerialNumberFile = "\\FRAM\\SERIAL.TXT";
constexpr const char* kTypeFile = "\\FRAM\\TYPE.TXT";

}  // namespace

/// Kept: a number that the instrument answers itself ends in "*", one from its file does not.
StatusAnd<std::string> CK4NManager::GetSerialNumber() {
  std::string text;
  const Status result = Guarded([&] {
    Status read = model_->QuerySerialNumber(text);
    if (Succeeded(read)) {
      text += '*';
    } else if (read == Status::kInstrumentNotSupported || read == Status::kRefused) {
      read = model_->ReadInstrumentFile(kSerialNumberFile, text);
    }
    if (IsNegative(read)) Discard(model_->Recover());  // the failure is the result
    return read;
  });
  return {result, std::move(text)};
}

StatusAnd<std::string> CK4NManager::GetInstrumentType() {
  std::string text;
  const Status result = Guarded([&] {
    const Status read = model_->ReadInstrumentFile(kTypeFile, text);
    if (IsNegative(read)) Discard(model_->Recover());  // the failure is the result
    return read;
  });
  return {result, std::move(text)};
}

/// Returns the worker's state while it measures; otherwise asks the instrument.
template <typename Read>
StatusAnd<bool> CK4NManager::ReadState(std::atomic<bool>& state, Site site, Read&& read,
                                       Told told) {
  if (!connected_) return {Status::kNoSession};
  if (worker_.IsMeasuring()) {
    return {Status::kOk, told == Told::kOnce ? state.exchange(true) : state.load()};
  }
  bool answer = false;
  const Status result = Guarded([&] {
    const Status asked = Record(site, std::forward<Read>(read)(answer));
    if (!Succeeded(asked)) return asked;
    state = told == Told::kOnce || answer;
    return Status::kOk;
  });
  return {result, answer};
}

StatusAnd<bool> CK4NManager::GetRfButton() {
  return ReadState(worker_.state().rf_button, Site::kRfButton,
                   [this](bool& answer) { return model_->ReadRfButton(answer); });
}

StatusAnd<bool> CK4NManager::GetPllState() {
  return ReadState(worker_.state().pll_locked, Site::kPllState,
                   [this](bool& answer) { return model_->ReadPllState(answer); });
}

/// Kept: a fault is reported once, then the state reads as good until the next fault. The worker
/// may set it at any moment, so it is read and reset in one atomic exchange: no fault is lost or
/// reported twice.
StatusAnd<bool> CK4NManager::GetErgState() {
  return ReadState(
      worker_.state().erg_good, Site::kErgState,
      [this](bool& answer) { return model_->ReadErgState(answer); }, Told::kOnce);
}

StatusAnd<bool> CK4NManager::GetLevelState() {
  return ReadState(worker_.state().level_settled, Site::kLevelState,
                   [this](bool& answer) { return model_->ReadLevelState(answer); });
}

/// The mode is kept also when the instrument refuses it.
Status CK4NManager::SetAttenMode(AttenMode mode) {
  return Guarded([&] {
    settings_.With([&](InstrumentSettings& live) { live.level.atten_mode = mode; });
    const Status result = Record(Site::kAttenMode, ApplyPowerAxis(std::nullopt));
    return Succeeded(result) ? Status::kOk : result;
  });
}

AttenMode CK4NManager::GetAttenMode() const {
  return Cached(&InstrumentSettings::level).atten_mode;
}

/// Both values are kept also when the instrument refuses them.
Status CK4NManager::SetExtRefGen(const ReferenceSettings& reference) {
  return Guarded([&] {
    ReferenceSettings kept = reference;
    const Status result =
        Record(Site::kExtRefGen, model_->SetExternalReference(kept.external, kept.frequency));
    settings_.With([&](InstrumentSettings& live) { live.reference = kept; });
    return result;
  });
}

ReferenceSettings CK4NManager::GetExtRefGen() const {
  return Cached(&InstrumentSettings::reference);
}

Status CK4NManager::SetExtRefPhaseDelay(std::int32_t delay) {
  return Guarded([&] {
    double value = delay;
    const Status result = Record(Site::kExtRefPhaseDelay, model_->SetPhaseDelay(value));
    if (!Succeeded(result)) return result;
    settings_.With([&](InstrumentSettings& live) {
      live.ext_ref_phase_delay = static_cast<std::int32_t>(std::lround(value));
    });
    return Status::kOk;
  });
}

std::int32_t CK4NManager::GetExtRefPhaseDelay() const {
  return Cached(&InstrumentSettings::ext_ref_phase_delay);
}

/// Kept: the flag marks the switching, not a mode. It reads false after a success, and true only
/// after a call whose trigger step failed.
Status CK4NManager::SetExtPwrCtrl(bool enabled) {
  return Guarded([&] {
    InstrumentSettings settings = settings_.With([](InstrumentSettings& live) {
      live.ext_pwr_ctrl = true;
      return live;
    });
    settings.sweep_trigger.source = enabled ? TriggerSource::kSoftware : TriggerSource::kImmediate;
    const Status triggered = ProgramSweepTrigger(settings.sweep_trigger).status;
    if (!Succeeded(triggered)) return triggered;

    settings.trigger_output.mode =
        enabled ? TriggerOutputMode::kSoftware : TriggerOutputMode::kNone;
    const Status result = ProgramTriggerOutput(settings.trigger_output);
    settings_.With([](InstrumentSettings& live) { live.ext_pwr_ctrl = false; });
    return result;
  });
}

bool CK4NManager::GetExtPwrCtrl() const { return Cached(&InstrumentSettings::ext_pwr_ctrl); }

/// The mode is kept also when the instrument refuses it.
Status CK4NManager::SetCompensMode(std::uint32_t mode) {
  return Guarded([&] {
    const Status result = Record(Site::kCompensMode, model_->SetCompensationMode(mode));
    settings_.With([&](InstrumentSettings& live) { live.compensation_mode = mode; });
    return result;
  });
}

std::uint32_t CK4NManager::GetCompensMode() const {
  return Cached(&InstrumentSettings::compensation_mode);
}
