// The trigger output and the synchronisation pulse generator.
#include <algorithm>

#include "K4NHardWare/K4NManagerOperation.h"

using namespace k4n;

namespace {

// The lines of a trigger parameter.
constexpr unsigned kFirstLine = 0;
constexpr unsigned kSecondLine = 1;

/// Kept: truncated to whole microseconds; only the last twentieth of one rounds up. 0 for NaN or a
/// negative width.
std::uint8_t WholeMicroseconds(double width) {
  constexpr double kMost = 255.0;
  return width >= 0.0 ? static_cast<std::uint8_t>(std::min(width + 0.05, kMost)) : 0;
}

}  // namespace

Status CK4NManager::SetTriggerOutput(const TriggerOutputSettings& settings) {
  return Guarded([&] { return ProgramTriggerOutput(settings); });
}

/// Kept: the mode of a disabled output is sent, and read back, as none; a refused setting reads
/// back as disabled.
Status CK4NManager::ProgramTriggerOutput(TriggerOutputSettings settings) {
  const auto [cached, ext_pwr_ctrl] = settings_.With([](const InstrumentSettings& live) {
    return std::pair(live.trigger_output, live.ext_pwr_ctrl);
  });
  const bool is_sent = ext_pwr_ctrl || settings.enabled;
  TriggerElements elements{
      .code = static_cast<std::uint32_t>(is_sent ? settings.mode : TriggerOutputMode::kNone),
      .edge = settings.inverse,
      .value = WholeMicroseconds(settings.width),
      .flag = ext_pwr_ctrl ? 1U : 0U,
      .last = 0};
  Status result = Record(Site::kTriggerOutput, model_->SetTriggerOutput(kFirstLine, elements));
  if (result != Status::kOk) settings.enabled = false;
  settings.mode = TriggerOutputMode{elements.code};
  settings.inverse = elements.edge;
  settings.width = elements.value;

  const bool was_sync = cached.mode == TriggerOutputMode::kSyncGenerator;
  const bool is_sync = settings.mode == TriggerOutputMode::kSyncGenerator;
  if (was_sync != is_sync || settings.enabled != cached.enabled) {
    // Kept: leaving the sync generator with the output enabled routes it once more.
    const bool routed = was_sync ? settings.enabled : is_sync;
    result = RouteSyncGenerator(routed);
    if (!Succeeded(result)) return result;
  }
  settings_.With([&](InstrumentSettings& live) { live.trigger_output = settings; });
  return result;
}

/// Sets up the second trigger line: the sync generator goes there, or nothing.
Status CK4NManager::RouteSyncGenerator(bool routed) {
  const std::uint32_t code = static_cast<std::uint32_t>(routed ? TriggerOutputMode::kSyncGenerator
                                                               : TriggerOutputMode::kNone);
  TriggerElements input{.code = code, .edge = false, .value = 1, .flag = 1, .last = 0};
  const Status result =
      Record(Site::kSecondTriggerInput, model_->SetTriggerInput(kSecondLine, input));
  if (!Succeeded(result)) return result;
  TriggerElements output{.code = code, .edge = true, .value = 1, .flag = 1, .last = 0};
  return Record(Site::kSecondTriggerOutput, model_->SetTriggerOutput(kSecondLine, output));
}

TriggerOutputSettings CK4NManager::GetTriggerOutput() const {
  return Cached(&InstrumentSettings::trigger_output);
}

/// The settings are kept also when the instrument refuses them.
Status CK4NManager::SetSyncGenerator(const SyncGeneratorSettings& settings) {
  return Guarded([&] {
    SyncGeneratorSettings kept = settings;
    double off_time = std::max(kept.period - kept.width, 0.0);
    const Status result =
        Record(Site::kSyncGenerator, model_->SetSyncGenerator(kept.width, off_time, kept.delay));
    kept.period = off_time + kept.width;
    settings_.With([&](InstrumentSettings& live) { live.sync_generator = kept; });
    return result;
  });
}

SyncGeneratorSettings CK4NManager::GetSyncGenerator() const {
  return Cached(&InstrumentSettings::sync_generator);
}
