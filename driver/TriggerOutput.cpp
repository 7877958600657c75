#include "driver/TriggerOutput.h"

#include "driver/EnumMap.h"
#include "driver/Units.h"

namespace {

constexpr EnumMap<ZentrelK4NTriggerOutputModeEnum, std::uint32_t, 7> kOutputModes{{
    {ZentrelK4NTriggerOutputModeNone, 0},
    {ZentrelK4NTriggerOutputModeInput, 4},
    {ZentrelK4NTriggerOutputModeSweep, 1},
    {ZentrelK4NTriggerOutputModeNextStep, 2},
    {ZentrelK4NTriggerOutputModeSingleStep, 3},
    {ZentrelK4NTriggerOutputModeSoftware, 6},
    {ZentrelK4NTriggerOutputModeSyncGen, 5},
}};

}  // namespace

template <typename Change>
HRESULT CZentrelK4NTriggerOutput::Set(Change change) const {
  return ManagerFrame([&](CK4NManager& manager) {
    TriggerOutputSettings settings = manager.GetTriggerOutput();
    change(settings);
    manager.SetTriggerOutput(settings);
    return S_OK;
  });
}

template <typename Out, typename Pick>
HRESULT CZentrelK4NTriggerOutput::Read(Out* value, Pick pick) const {
  return ManagerFrame(value, [&](const CK4NManager& manager) {
    *value = pick(manager.GetTriggerOutput());
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NTriggerOutput::put_Width(double width) {
  return Set([&](auto& settings) { settings.width = width * kMicrosecondsPerSecond; });
}

STDMETHODIMP CZentrelK4NTriggerOutput::get_Width(double* value) {
  return Read(value, [](const auto& settings) { return settings.width / kMicrosecondsPerSecond; });
}

// Kept: a value that is none of the modes sends the present one again.
STDMETHODIMP CZentrelK4NTriggerOutput::put_Mode(ZentrelK4NTriggerOutputModeEnum mode) {
  return Set(
      [&](auto& settings) { settings.mode = CodeOf(kOutputModes, mode).value_or(settings.mode); });
}

STDMETHODIMP CZentrelK4NTriggerOutput::get_Mode(ZentrelK4NTriggerOutputModeEnum* value) {
  return ManagerFrame(value, [&](const CK4NManager& manager) {
    PutValueOf(kOutputModes, manager.GetTriggerOutput().mode, value);
    return S_OK;
  });
}

// Kept: every value but Inverse means Normal.
STDMETHODIMP CZentrelK4NTriggerOutput::put_Polarity(ZentrelK4NTriggerOutputPolarityEnum polarity) {
  return Set([&](auto& settings) {
    settings.polarity = polarity == ZentrelK4NTriggerOutputPolarityInverse;
  });
}

STDMETHODIMP CZentrelK4NTriggerOutput::get_Polarity(ZentrelK4NTriggerOutputPolarityEnum* value) {
  return Read(value, [](const auto& settings) {
    return settings.polarity == 1 ? ZentrelK4NTriggerOutputPolarityInverse
                                  : ZentrelK4NTriggerOutputPolarityNormal;
  });
}

STDMETHODIMP CZentrelK4NTriggerOutput::put_Enabled(VARIANT_BOOL enabled) {
  return Set([&](auto& settings) { settings.enabled = enabled != VARIANT_FALSE ? 1 : 0; });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4NTriggerOutput::get_Enabled(VARIANT_BOOL* value) {
  return Read(value,
              [](const auto& settings) { return static_cast<VARIANT_BOOL>(settings.enabled); });
}
