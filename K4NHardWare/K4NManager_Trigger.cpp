// The trigger output and the synchronisation pulse generator.
#include <algorithm>

#include "K4NHardWare/K4NManagerOperation.h"

namespace {

/// The trigger output's mode that emits the synchronisation pulses.
constexpr std::uint32_t kSyncGeneratorMode = 5;

// The lines that a trigger parameter is for.
constexpr unsigned kFirstLine = 0;
constexpr unsigned kSecondLine = 1;

/// Kept: whole microseconds, cut and not rounded but for the last twentieth; 0 for NaN or a
/// negative width.
std::uint8_t WholeMicroseconds(double width) {
  constexpr double kMost = 255.0;
  return width >= 0.0 ? static_cast<std::uint8_t>(std::min(width + 0.05, kMost)) : 0;
}

}  // namespace

Status CK4NManager::SetTriggerOutput(TriggerOutputSettings& settings) {
  return Guarded([&] { return ProgramTriggerOutput(settings); });
}

/// Kept: the mode of a disabled output is sent, and read back, as none; a refused setting reads
/// back as disabled.
Status CK4NManager::ProgramTriggerOutput(TriggerOutputSettings& settings) {
  const auto [cached, ext_pwr_ctrl] = settings_.With([](const InstrumentSettings& live) {
    return std::pair(live.trigger_output, live.ext_pwr_ctrl);
  });
  const bool is_sent = ext_pwr_ctrl || settings.enabled != 0;
  TriggerElements elements{.code = is_sent ? settings.mode : kNoTriggerOutput,
                           .edge = settings.polarity != 0,
                           .value = WholeMicroseconds(settings.width),
                           .flag = ext_pwr_ctrl ? 1U : 0U,
                           .last = 0};
  Status result = Record(Site::kTriggerOutput, model_->SetTriggerOutput(kFirstLine, elements));
  if (result != status::kOk) settings.enabled = 0;
  settings.mode = elements.code;
  settings.polarity = elements.edge ? 1 : 0;
  settings.width = elements.value;

  const bool was_sync = cached.mode == kSyncGeneratorMode;
  const bool is_sync = settings.mode == kSyncGeneratorMode;
  if (was_sync != is_sync || settings.enabled != cached.enabled) {
    // Kept: leaving the sync generator with the output enabled routes it once more.
    const bool routed = was_sync ? settings.enabled != 0 : is_sync;
    result = RouteSyncGenerator(routed);
    if (!IsSuccess(result)) return result;
  }
  settings_.With([&](InstrumentSettings& live) { live.trigger_output = settings; });
  return result;
}

/// Sets up the second trigger line: the sync generator goes there, or nothing.
Status CK4NManager::RouteSyncGenerator(bool routed) {
  const std::uint32_t code = routed ? kSyncGeneratorMode : kNoTriggerOutput;
  TriggerElements input{.code = code, .edge = false, .value = 1, .flag = 1, .last = 0};
  const Status result =
      Record(Site::kSecondTriggerInput, model_->SetTriggerInput(kSecondLine, input));
  if (!IsSuccess(result)) return result;
  TriggerElements output{.code = code, .edge = true, .value = 1, .flag = 1, .last = 0};
  return Record(Site::kSecondTriggerOutput, model_->SetTriggerOutput(kSecondLine, output));
}

TriggerOutputSettings CK4NManager::GetTriggerOutput() const {
  return settings_.With([](const InstrumentSettings& live) { return live.trigger_output; });
}

/// The settings are kept also when the instrument refuses them.
Status CK4NManager::SetSyncGenerator(SyncGeneratorSettings& settings) {
  return Guarded([&] {
    double off_time = std::max(settings.period - settings.width, 0.0);
    const Status result = Record(
        Site::kSyncGenerator, model_->SetSyncGenerator(settings.width, off_time, settings.delay));
    settings.period = off_time + settings.width;
    settings_.With([&](InstrumentSettings& live) { live.sync_generator = settings; });
    return result;
  });
}

SyncGeneratorSettings CK4NManager::GetSyncGenerator() const {
  return settings_.With([](const InstrumentSettings& live) { return live.sync_generator; });
}
