#include "driver/TriggerOutput.h"

#include "K4NHardWare/Units.h"
#include "driver/EnumMap.h"

using namespace driver;

namespace {

constexpr EnumMap<ZentrelK4NTriggerOutputModeEnum, k4n::TriggerOutputMode, 7> kOutputModes{{
    {ZentrelK4NTriggerOutputModeNone, k4n::TriggerOutputMode::kNone},
    {ZentrelK4NTriggerOutputModeInput, k4n::TriggerOutputMode::kInput},
    {ZentrelK4NTriggerOutputModeSweep, k4n::TriggerOutputMode::kSweep},
    {ZentrelK4NTriggerOutputModeNextStep, k4n::TriggerOutputMode::kNextStep},
    {ZentrelK4NTriggerOutputModeSingleStep, k4n::TriggerOutputMode::kSingleStep},
    {ZentrelK4NTriggerOutputModeSoftware, k4n::TriggerOutputMode::kSoftware},
    {ZentrelK4NTriggerOutputModeSyncGen, k4n::TriggerOutputMode::kSyncGenerator},
}};

}  // namespace

template <typename Change>
HRESULT CZentrelK4NTriggerOutput::Set(Change change) const {
  return ManagerFrame([&](CK4NManager& manager) {
    k4n::TriggerOutputSettings settings = manager.GetTriggerOutput();
    change(settings);
    Discard(manager.SetTriggerOutput(settings));
    return S_OK;
  });
}

template <typename Out, typename Pick>
HRESULT CZentrelK4NTriggerOutput::Read(Out* value, Pick pick) const {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    *value = pick(manager.GetTriggerOutput());
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NTriggerOutput::put_Width(double width) {
  return Set([&](auto& settings) { settings.width = width * k4n::kMicrosecondsPerSecond; });
}

STDMETHODIMP CZentrelK4NTriggerOutput::get_Width(double* value) {
  return Read(value,
              [](const auto& settings) { return settings.width / k4n::kMicrosecondsPerSecond; });
}

// Kept: a value that is none of the modes sends the present one again.
STDMETHODIMP CZentrelK4NTriggerOutput::put_Mode(ZentrelK4NTriggerOutputModeEnum mode) {
  return Set(
      [&](auto& settings) { settings.mode = CodeOf(kOutputModes, mode).value_or(settings.mode); });
}

STDMETHODIMP CZentrelK4NTriggerOutput::get_Mode(ZentrelK4NTriggerOutputModeEnum* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    PutValueOf(kOutputModes, manager.GetTriggerOutput().mode, value);
    return S_OK;
  });
}

// Kept: every value but Inverse means Normal.
STDMETHODIMP CZentrelK4NTriggerOutput::put_Polarity(ZentrelK4NTriggerOutputPolarityEnum polarity) {
  return Set([&](auto& settings) {
    settings.inverse = polarity == ZentrelK4NTriggerOutputPolarityInverse;
  });
}

STDMETHODIMP CZentrelK4NTriggerOutput::get_Polarity(ZentrelK4NTriggerOutputPolarityEnum* value) {
  return Read(value, [](const auto& settings) {
    return settings.inverse ? ZentrelK4NTriggerOutputPolarityInverse
                            : ZentrelK4NTriggerOutputPolarityNormal;
  });
}

STDMETHODIMP CZentrelK4NTriggerOutput::put_Enabled(VARIANT_BOOL enabled) {
  return Set([&](auto& settings) { settings.enabled = enabled != VARIANT_FALSE; });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4NTriggerOutput::get_Enabled(VARIANT_BOOL* value) {
  return Read(value, [](const auto& settings) { return BoolAsOne(settings.enabled); });
}
