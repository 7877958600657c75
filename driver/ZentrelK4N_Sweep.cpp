// IZentrelK4NSweep: sweep mode, trigger, and the ways to the step groups.
#include "driver/EnumMap.h"
#include "driver/ZentrelK4N.h"

using namespace driver;

namespace {

const IID& kSweep = __uuidof(IZentrelK4NSweep);

constexpr EnumMap<ZentrelK4NSweepModeEnum, k4n::SweepMode, 4> kSweepModes{{
    {ZentrelK4NSweepModeNone, k4n::SweepMode::kContinuousWave},
    {ZentrelK4NSweepModeFrequencyStep, k4n::SweepMode::kFrequencyStep},
    {ZentrelK4NSweepModePowerStep, k4n::SweepMode::kPowerStep},
    {ZentrelK4NSweepModeList, k4n::SweepMode::kList},
}};

constexpr EnumMap<ZentrelK4NSweepTriggerSourceEnum, k4n::TriggerSource, 3> kTriggerSources{{
    {ZentrelK4NSweepTriggerSourceImmediate, k4n::TriggerSource::kImmediate},
    {ZentrelK4NSweepTriggerSourceExternal, k4n::TriggerSource::kExternal},
    {ZentrelK4NSweepTriggerSourceSoftware, k4n::TriggerSource::kSoftware},
}};

// Mode and trigger source are truncated to a byte: 259 acts as 3.
template <typename Enumeration>
constexpr Enumeration LowByte(Enumeration value) {
  return static_cast<Enumeration>(static_cast<std::uint8_t>(value));
}

}  // namespace

STDMETHODIMP CZentrelK4N::get_FrequencyStep(IZentrelK4NFrequencyStep** value) {
  return Getter(Self(), kSweep, value);
}

STDMETHODIMP CZentrelK4N::get_PowerStep(IZentrelK4NPowerStep** value) {
  return Getter(power_step_.Get(), kSweep, value);
}

STDMETHODIMP CZentrelK4N::get_List(IZentrelK4NList** value) {
  return Getter(Self(), kSweep, value);
}

STDMETHODIMP CZentrelK4N::get_TriggerOutput(IZentrelK4NTriggerOutput** value) {
  return Getter(trigger_output_.Get(), kSweep, value);
}

STDMETHODIMP CZentrelK4N::Configure(ZentrelK4NSweepModeEnum mode,
                                    ZentrelK4NSweepTriggerSourceEnum trigger_source) {
  return SessionFrame(kSweep, [&] {
    const HRESULT result = put_Mode(mode);
    return result != S_OK ? result : put_TriggerSource(trigger_source);
  });
}

STDMETHODIMP CZentrelK4N::put_Mode(ZentrelK4NSweepModeEnum mode) {
  return SessionFrame(kSweep, [&]() -> HRESULT {
    const auto code = CodeOf(kSweepModes, LowByte(mode));
    if (!code) {
      return Error(UnsupportedPropertyValue(mode, "Mode", FullStop::kYes), kSweep,
                   Status::kEnumerationNotSupported);
    }
    if (manager_.SetSweepMode(*code) != Status::kOk) {
      return Error(kInstrumentErrorText, kSweep, Status::kInstrumentError);
    }
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Mode(ZentrelK4NSweepModeEnum* value) {
  return Frame({value}, [&]() -> HRESULT {
    const auto mode = ValueOf(kSweepModes, manager_.GetSweepMode());
    if (!mode) return Error(kUnexpectedResponseText, kSweep, Status::kUnexpectedResponse);
    *value = *mode;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_TriggerSource(ZentrelK4NSweepTriggerSourceEnum source) {
  return SessionFrame(kSweep, [&]() -> HRESULT {
    k4n::SweepTriggerSettings trigger = manager_.GetSweepTrigger();
    trigger.source =
        CodeOf(kTriggerSources, LowByte(source)).value_or(k4n::TriggerSource::kUnknown);
    // Kept: single steps need the external trigger; a software source is then ignored without an
    // error.
    if (trigger.single_step && trigger.source == k4n::TriggerSource::kSoftware) return S_OK;
    return ToCode(manager_.SetSweepTrigger(trigger));
  });
}

STDMETHODIMP CZentrelK4N::get_TriggerSource(ZentrelK4NSweepTriggerSourceEnum* value) {
  return SessionFrame(kSweep, {value}, [&] {
    PutValueOf(kTriggerSources, manager_.GetSweepTrigger().source, value);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_TriggerAction(ZentrelK4NSweepTriggerActionEnum action) {
  return SessionFrame(kSweep, [&] {
    k4n::SweepTriggerSettings trigger = manager_.GetSweepTrigger();
    // Kept: every value but Measure means Switch.
    trigger.action = action == ZentrelK4NSweepTriggerActionMeasure ? k4n::TriggerAction::kMeasure
                                                                   : k4n::TriggerAction::kSwitch;
    return manager_.SetSweepTrigger(trigger);
  });
}

STDMETHODIMP CZentrelK4N::get_TriggerAction(ZentrelK4NSweepTriggerActionEnum* value) {
  return SessionFrame(kSweep, {value}, [&] {
    *value = manager_.GetSweepTrigger().action == k4n::TriggerAction::kMeasure
                 ? ZentrelK4NSweepTriggerActionMeasure
                 : ZentrelK4NSweepTriggerActionSwitch;
    return S_OK;
  });
}
