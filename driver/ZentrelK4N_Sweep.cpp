// IZentrelK4NSweep: sweep mode, trigger, and the ways to the step groups.
#include "driver/EnumMap.h"
#include "driver/SweepSettings.h"
#include "driver/ZentrelK4N.h"

namespace {

const IID& kSweep = __uuidof(IZentrelK4NSweep);

constexpr EnumMap<ZentrelK4NSweepModeEnum, SweepMode, 4> kSweepModes{{
    {ZentrelK4NSweepModeNone, SweepMode::kContinuousWave},
    {ZentrelK4NSweepModeFrequencyStep, SweepMode::kFrequencyStep},
    {ZentrelK4NSweepModePowerStep, SweepMode::kPowerStep},
    {ZentrelK4NSweepModeList, SweepMode::kList},
}};

constexpr EnumMap<ZentrelK4NSweepTriggerSourceEnum, std::uint32_t, 3> kTriggerSources{{
    {ZentrelK4NSweepTriggerSourceImmediate, static_cast<std::uint32_t>(TriggerSource::kImmediate)},
    {ZentrelK4NSweepTriggerSourceExternal, static_cast<std::uint32_t>(TriggerSource::kExternal)},
    {ZentrelK4NSweepTriggerSourceSoftware, static_cast<std::uint32_t>(TriggerSource::kSoftware)},
}};

// Mode and trigger source are carried in a byte: 259 acts as 3.
constexpr std::uint32_t LowByte(std::int32_t value) {
  return static_cast<std::uint32_t>(value) & 0xFF;
}

}  // namespace

STDMETHODIMP CZentrelK4N::get_FrequencyStep(IZentrelK4NFrequencyStep** value) {
  return Getter(Self(), kSweep, "IZentrelK4NFrequencyStep", value);
}

STDMETHODIMP CZentrelK4N::get_PowerStep(IZentrelK4NPowerStep** value) {
  return Getter(power_step_.Get(), kSweep, "IZentrelK4NPowerStep", value);
}

STDMETHODIMP CZentrelK4N::get_List(IZentrelK4NList** value) {
  return Getter(Self(), kSweep, "IZentrelK4NList", value);
}

STDMETHODIMP CZentrelK4N::get_TriggerOutput(IZentrelK4NTriggerOutput** value) {
  return Getter(trigger_output_.Get(), kSweep, "IZentrelK4NTriggerOutput", value);
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
    const auto code = CodeOf(kSweepModes, static_cast<ZentrelK4NSweepModeEnum>(LowByte(mode)));
    if (!code) {
      return Error(UnsupportedPropertyValue(mode, "Mode", FullStop::kYes), kSweep,
                   status::kEnumerationNotSupported);
    }
    if (manager_.SetSweepMode(*code) != status::kOk) {
      return Error(kInstrumentErrorText, kSweep, status::kInstrumentError);
    }
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Mode(ZentrelK4NSweepModeEnum* value) {
  return Frame(value, [&]() -> HRESULT {
    const auto mode = ValueOf(kSweepModes, SweepModeOf(manager_));
    if (!mode) {
      return Error(kUnexpectedResponseText, kSweep, status::kUnexpectedResponse);
    }
    *value = *mode;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_TriggerSource(ZentrelK4NSweepTriggerSourceEnum source) {
  return SessionFrame(kSweep, [&]() -> HRESULT {
    SweepTrigger trigger = SweepTriggerOf(manager_);
    trigger.settings.source = LowByte(source);
    // Kept: single steps come from the external trigger; the software source is then silently not
    // taken.
    if (trigger.single_step &&
        trigger.settings.source == static_cast<std::uint32_t>(TriggerSource::kSoftware)) {
      return S_OK;
    }
    return manager_.SetSweepTrigger(trigger.settings, trigger.single_step);
  });
}

STDMETHODIMP CZentrelK4N::get_TriggerSource(ZentrelK4NSweepTriggerSourceEnum* value) {
  return SessionFrame(kSweep, value, [&] {
    PutValueOf(kTriggerSources, SweepTriggerOf(manager_).settings.source, value);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_TriggerAction(ZentrelK4NSweepTriggerActionEnum action) {
  return SessionFrame(kSweep, [&] {
    SweepTrigger trigger = SweepTriggerOf(manager_);
    // Kept: every value but Measure means Switch.
    trigger.settings.action = action == ZentrelK4NSweepTriggerActionMeasure ? 1 : 0;
    return manager_.SetSweepTrigger(trigger.settings, trigger.single_step);
  });
}

STDMETHODIMP CZentrelK4N::get_TriggerAction(ZentrelK4NSweepTriggerActionEnum* value) {
  return SessionFrame(kSweep, value, [&] {
    *value = SweepTriggerOf(manager_).settings.action != 0 ? ZentrelK4NSweepTriggerActionMeasure
                                                           : ZentrelK4NSweepTriggerActionSwitch;
    return S_OK;
  });
}
