// The RF output.
#include "K4NHardWare/K4NManagerOperation.h"

Status CK4NManager::SetFrequency(double frequency) {
  return Guarded([&] {
    settings_.With([&](InstrumentSettings& live) { live.cw_frequency = frequency; });
    return Record(Site::kCwFrequency, ApplyFrequencyAxis(SweepMode::kContinuousWave));
  });
}

Status CK4NManager::GetFrequency(double& frequency) const {
  return Cached([&](const InstrumentSettings& live) { frequency = live.cw_frequency; });
}

Status CK4NManager::SetLevel(double level) {
  return Guarded([&] {
    settings_.With([&](InstrumentSettings& live) { live.cw_level = level; });
    return Record(Site::kCwLevel, ApplyPowerAxis(SweepMode::kContinuousWave));
  });
}

Status CK4NManager::GetLevel(double& level) const {
  return Cached([&](const InstrumentSettings& live) { level = live.cw_level; });
}

Status CK4NManager::SetOutputEnabled(bool enabled) {
  return Guarded([&] {
    if (!enabled) return SwitchOutputOff();
    settings_.With([](InstrumentSettings& live) { live.level.level_control = 1; });
    return Record(Site::kOutputEnabled, ApplyPowerAxis(std::nullopt));
  });
}

/// Sends the continuous-wave level, whatever the sweep mode is.
Status CK4NManager::SwitchOutputOff() {
  InstrumentSettings settings = settings_.With([](InstrumentSettings& live) {
    live.level.level_control = 0;
    return live;
  });
  const Status result = model_->SetOutputLevel(settings.level, settings.cw_level);
  if (IsSuccess(result)) {
    settings_.With([&](InstrumentSettings& live) {
      live.level = settings.level;
      live.cw_level = settings.cw_level;
    });
  }
  return Record(Site::kOutputEnabled, result);
}

Status CK4NManager::GetOutputEnabled(bool& enabled) {
  const Status result =
      Cached([&](const InstrumentSettings& live) { enabled = live.level.level_control == 1; });
  if (result == status::kOk) block_.Discard();
  return result;
}
