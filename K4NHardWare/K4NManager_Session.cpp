// Opening and closing a session, with everything that is sent for it.
#include <array>
#include <chrono>

#include "K4NHardWare/K4NManagerOperation.h"
#include "platform/os/Sync.h"

using namespace k4n;

namespace {

constexpr std::chrono::milliseconds kSettleTime{20};
constexpr const char* kGeneratorOption = "GENERATOR";
constexpr const char* kReferenceDate = "28.12.2005";

/// The kinds in the order in which they are probed.
constexpr std::array kKindCandidates = {measurement::InstrumentKind::kAnalyser,
                                        measurement::InstrumentKind::kDetectors,
                                        measurement::InstrumentKind::kGenerator};

bool IsNotSupported(Status result) {
  return result == Status::kInstrumentNotSupported || result == Status::kInstrumentFormUnknown;
}

}  // namespace

Status CK4NManager::Initialize(const std::string& resource_name, const std::string& option_string) {
  os::Sleep(kSettleTime);
  AbandonExchange();
  const Operation operation(*this);
  Discard(EndSession(Output::kSwitchOff));  // there may be none
  if (const Status opened = OpenSession(resource_name); opened != Status::kOk) return opened;
  const Status started = StartSession(option_string == kGeneratorOption);
  if (started == Status::kOk) {
    connected_ = true;
  } else {
    // A session that did not start leaves the output as it is.
    Discard(EndSession(Output::kLeave));
  }
  return started;
}

Status CK4NManager::Close() {
  AbandonExchange();
  const Operation operation(*this);
  return EndSession(Output::kSwitchOff);
}

/// An operation, or the worker, may be waiting for the rest of an answer that never comes.
void CK4NManager::AbandonExchange() {
  const std::lock_guard lock(session_mutex_);
  if (exchanger_ != nullptr) exchanger_->Abandon();
}

Status CK4NManager::OpenSession(const std::string& resource_name) {
  auto device = std::make_unique<uDevice::Interface>(resource_name);
  if (const Status opened = device->last_status(); opened != Status::kOk) {
    if (!Succeeded(opened)) trail_.Append(opened, Site::kOpenSession);
    return opened;
  }
  auto exchanger = std::make_unique<CommandExchanger>(std::move(device));
  auto model = std::make_unique<D3THardWare>(*exchanger);
  model->SetManager(this);
  exchanger->SetManager(model.get());

  const std::lock_guard lock(session_mutex_);
  exchanger_ = std::move(exchanger);
  model_ = std::move(model);
  return Status::kOk;
}

Status CK4NManager::StartSession(bool generator_only) {
  const Status initialized = Record(Site::kInitializeModel, model_->Initialize());
  if (IsNotSupported(initialized)) return Status::kUnknownResource;
  instrument_kind_ = generator_only ? measurement::InstrumentKind::kGenerator
                                    : measurement::InstrumentKind::kAnalyser;
  // Other failures are only recorded in the trail: the steps below decide.
  if (IsNotSupported(ResetAndIdentify())) return Status::kIdentificationFailed;

  firmware_newer_ =
      model_->identity().dsp_program.Ordinal() > ParseIdentityDate(kReferenceDate).Ordinal();
  block_.Discard();
  worker_.Start(*model_);

  pulse_.With([](PulseSettings& pulse) { pulse.modulation_enabled = false; });
  Status modulation_off = SwitchPulseModulationOff();
  if (IsNotSupported(modulation_off)) {
    // An instrument without a modulator has not failed.
    pulse_.With([](PulseSettings& pulse) { pulse.modulation_available = false; });
    modulation_off = Status::kOk;
  }
  Discard(Record(Site::kPulseOff, modulation_off));
  const std::lock_guard lock(session_mutex_);
  return protocol_.Open().value_or(modulation_off);
}

Status CK4NManager::EndSession(Output output) {
  block_.Discard();
  if (model_ == nullptr) return Status::kNoSession;
  // The session ends even if the instrument cannot be reached.
  if (output == Output::kSwitchOff) Discard(SwitchOutputOff());
  worker_.Stop();

  const std::lock_guard lock(session_mutex_);
  connected_ = false;
  model_.reset();
  exchanger_.reset();
  protocol_.Close();
  return Status::kOk;
}

Status CK4NManager::ResetAndIdentify() {
  LoadDefaults();
  if (const Status identified = Identify(); !Succeeded(identified)) return identified;

  InstrumentSettings settings = settings_.Copy();
  const Status read =
      Record(Site::kOutputState, model_->ReadOutputState(settings.level, settings.cw_level));
  if (!Succeeded(read)) return read;
  // Only these settings: another thread may be setting up its channels.
  settings_.With([&](InstrumentSettings& live) {
    live.level = settings.level;
    live.cw_level = settings.cw_level;
  });

  if (instrument_kind_ != measurement::InstrumentKind::kGenerator) {
    Discard(ProgramAveraging(settings.averaging));  // kept: a refusal shows in the trail only
  }
  return ProgramSweepMode(SweepMode::kContinuousWave).status;
}

void CK4NManager::LoadDefaults() {
  block_.Discard();
  settings_.Set({});
  pulse_.Set({});
  frequency_list_.Set(nullptr);
  power_list_.Set(nullptr);
  measurement_mode_ = SweepMode::kContinuousWave;
  StateFlags& state = worker_.state();
  state.rf_button = false;
  state.pll_locked = false;
  state.level_settled = false;
  state.erg_good = true;
}

/// Probes the kinds, starting with the chosen one, until the instrument confirms one. If it
/// confirms none, the chosen one is used.
Status CK4NManager::Identify() {
  Status result = Status::kOk;
  const measurement::InstrumentKind chosen = instrument_kind_;
  bool reached = false;
  for (const measurement::InstrumentKind candidate : kKindCandidates) {
    reached = reached || candidate == chosen;
    if (!reached) continue;
    auto kind = static_cast<std::uint32_t>(candidate);
    result = model_->QueryInstrumentKind(kind);
    if (result == Status::kOk) {
      if (kind != static_cast<std::uint32_t>(candidate)) {
        trail_.Append(Status::kWrongInstrumentKind, Site::kInstrumentKind);
        return Status::kWrongInstrumentKind;
      }
      instrument_kind_ = candidate;
      return Status::kOk;
    }
    if (IsNegative(result)) {
      result = Succeeded(model_->Recover()) ? Status::kOk : Status::kInstrumentRepeat;
    }
  }
  if (!Succeeded(result)) trail_.Append(result, Site::kKindProbe);
  return result;
}
