#include "K4NHardWare/K4NManager.h"

#include "K4NHardWare/Event.h"
#include "K4NHardWare/K4NManagerOperation.h"

using namespace k4n;

CK4NManager::CK4NManager() = default;

CK4NManager::~CK4NManager() { Discard(Close()); }

bool CK4NManager::IsConnected() const { return connected_; }

ErrorReport CK4NManager::ErrorQuery() {
  const std::optional<ErrorRecord> oldest = trail_.Take();
  if (!oldest) return {};

  const Status status = oldest->status;
  const std::lock_guard lock(session_mutex_);
  std::optional<std::string> message = IsLinkFailure(status) && model_ != nullptr
                                           ? model_->DescribeStatus(status)
                                           : protocol_.Describe(status);
  if (!message) message = std::to_string(ToCode(status));
  return {status, std::move(message)};
}

Status CK4NManager::Record(Site site, Status result) {
  if (!Succeeded(result)) trail_.Append(result, site);
  return result;
}

/// Whether the worker has something to read now.
bool CK4NManager::MayMeasure() const {
  if (!worker_.IsRunning()) return false;
  return settings_.With([this](const InstrumentSettings& live) {
    if (live.sweep_mode == SweepMode::kFrequencyStep && !live.frequency_step_configured) {
      return false;
    }
    if (live.sweep_trigger.source == TriggerSource::kSoftware && !worker_.IsTriggerPending()) {
      return false;
    }
    if (measurement_mode_ == SweepMode::kContinuousWave) return false;
    return instrument_kind_ != measurement::InstrumentKind::kGenerator ||
           live.level.level_control == 1;
  });
}

void CK4NManager::ProcessEvent(uIEvent::Event* event) { last_event_.reset(event); }

uIEvent::IEventProcessor* CK4NManager::SetManager(uIEvent::IEventProcessor* manager) {
  manager_ = manager;
  return manager;
}

uIEvent::EventProcessor* CK4NManager::GetProcessor() { return nullptr; }
