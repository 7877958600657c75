#include "driver/PulseModulation.h"

#include "driver/EnumMap.h"

using namespace driver;

namespace {

constexpr EnumMap<ZentrelK4NPulseModulationSourceEnum, k4n::PulseSource, 2> kSources{{
    {ZentrelK4NPulseModulationSourceInternal, k4n::PulseSource::kInternal},
    {ZentrelK4NPulseModulationSourceExternal, k4n::PulseSource::kExternal},
}};

}  // namespace

STDMETHODIMP CZentrelK4NPulseModulation::put_Enabled(VARIANT_BOOL enabled) {
  return ManagerFrame(
      [&](CK4NManager& manager) { return manager.SetPulseModEnabled(enabled != VARIANT_FALSE); });
}

STDMETHODIMP CZentrelK4NPulseModulation::get_Enabled(VARIANT_BOOL* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    const k4n::PulseSettings pulse = manager.GetPulseSettings();
    if (!pulse.modulation_available) return Status::kPropertyNotSupported;
    *value = BoolAsTrue(pulse.modulation_enabled);
    return Status::kOk;
  });
}

// Kept: every value but External means Internal.
STDMETHODIMP CZentrelK4NPulseModulation::put_Source(ZentrelK4NPulseModulationSourceEnum source) {
  return ManagerFrame([&](CK4NManager& manager) {
    return manager.SetPulseModSource(
        CodeOf(kSources, source).value_or(k4n::PulseSource::kInternal));
  });
}

STDMETHODIMP CZentrelK4NPulseModulation::get_Source(ZentrelK4NPulseModulationSourceEnum* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    PutValueOf(kSources, manager.GetPulseSettings().modulation_source, value);
    return S_OK;
  });
}

// Kept: every value but Inverse means Normal.
STDMETHODIMP CZentrelK4NPulseModulation::put_ExternalPolarity(
    ZentrelK4NPulseModulationExternalPolarityEnum polarity) {
  return ManagerFrame([&](CK4NManager& manager) {
    return manager.SetPulseModPolarity(polarity ==
                                       ZentrelK4NPulseModulationExternalPolarityInverse);
  });
}

STDMETHODIMP CZentrelK4NPulseModulation::get_ExternalPolarity(
    ZentrelK4NPulseModulationExternalPolarityEnum* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    const k4n::PulseSettings pulse = manager.GetPulseSettings();
    if (!pulse.modulation_available) return Status::kPropertyNotSupported;
    *value = pulse.modulation_inverse ? ZentrelK4NPulseModulationExternalPolarityInverse
                                      : ZentrelK4NPulseModulationExternalPolarityNormal;
    return Status::kOk;
  });
}
