#include "K4NHardWare/K4NManager.h"

#include "K4NHardWare/Event.h"
#include "K4NHardWare/K4NManagerOperation.h"

CK4NManager::CK4NManager() = default;

CK4NManager::~CK4NManager() { Close(); }

bool CK4NManager::IsConnected() const { return connected_; }

Status CK4NManager::ErrorQuery(std::int32_t& code, std::optional<std::string>& message) {
  message.reset();
  code = 0;
  const std::optional<ErrorRecord> oldest = trail_.Take();
  if (!oldest) return status::kOk;

  code = oldest->status;
  const std::lock_guard lock(session_mutex_);
  if (code >= status::kVisaFirst && code <= status::kVisaLast && model_ != nullptr) {
    std::string text;
    model_->DescribeStatus(code, text);
    message = std::move(text);
  } else {
    message = protocol_.Describe(code);
  }
  if (!message) message = std::to_string(code);
  return status::kOk;
}

Status CK4NManager::Record(Site site, Status result) {
  if (!IsSuccess(result)) trail_.Append(result, site);
  return result;
}

/// Whether the worker has something to read now.
bool CK4NManager::MayMeasure() const {
  if (!worker_.IsRunning()) return false;
  return settings_.With([this](const InstrumentSettings& live) {
    if (live.sweep_mode == SweepMode::kFrequencyStep && !live.frequency_step_configured) {
      return false;
    }
    if (live.sweep_trigger.source == static_cast<std::uint32_t>(TriggerSource::kSoftware) &&
        !worker_.IsTriggerPending()) {
      return false;
    }
    if (measurement_mode_ == SweepMode::kContinuousWave) return false;
    return instrument_kind_ != InstrumentKind::kGenerator || live.level.level_control == 1;
  });
}

void CK4NManager::ProcessEvent(uIEvent::Event* event) { last_event_.reset(event); }

uIEvent::IEventProcessor* CK4NManager::SetManager(uIEvent::IEventProcessor* manager) {
  manager_ = manager;
  return manager;
}

uIEvent::EventProcessor* CK4NManager::GetProcessor() { return nullptr; }
