// The RF output.
#include "K4NHardWare/K4NManagerOperation.h"

using namespace k4n;

Status CK4NManager::SetFrequency(double frequency) {
  return Guarded([&] {
    settings_.With([&](InstrumentSettings& live) { live.cw_frequency = frequency; });
    return Record(Site::kCwFrequency, ApplyFrequencyAxis(SweepMode::kContinuousWave));
  });
}

double CK4NManager::GetFrequency() const { return Cached(&InstrumentSettings::cw_frequency); }

Status CK4NManager::SetLevel(double level) {
  return Guarded([&] {
    settings_.With([&](InstrumentSettings& live) { live.cw_level = level; });
    return Record(Site::kCwLevel, ApplyPowerAxis(SweepMode::kContinuousWave));
  });
}

double CK4NManager::GetLevel() const { return Cached(&InstrumentSettings::cw_level); }

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
  if (Succeeded(result)) {
    settings_.With([&](InstrumentSettings& live) {
      live.level = settings.level;
      live.cw_level = settings.cw_level;
    });
  }
  return Record(Site::kOutputEnabled, result);
}

bool CK4NManager::GetOutputEnabled() {
  block_.Discard();
  return Cached(&InstrumentSettings::level).level_control == 1;
}
