// IZentrelK4NFrequencyStep. Single step and dwell are one setting for all kinds of sweep; the
// list's members of these names are these very members.
#include "driver/SweepSettings.h"
#include "driver/Units.h"
#include "driver/ZentrelK4N.h"

namespace {

const IID& kFrequencyStep = __uuidof(IZentrelK4NFrequencyStep);

}  // namespace

// Kept: an instrument that refuses the values is heard of in ErrorQuery only.
STDMETHODIMP CZentrelK4N::ConfigureStartStop(double start, double stop,
                                             ZentrelK4NFrequencyStepScalingEnum scaling,
                                             double step_size) {
  return SessionFrame(kFrequencyStep, [&]() -> HRESULT {
    if (scaling != ZentrelK4NFrequencyStepScalingLinear) {
      return Error(UnsupportedParameterValue(scaling, "Scaling", "ConfigureStartStop"),
                   kFrequencyStep, status::kEnumerationNotSupported);
    }
    manager_.SetFrequencyStep(start, stop, step_size);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Start(double start) {
  return SessionFrame(kFrequencyStep, [&] {
    const StepSettings axis = FrequencyStepOf(manager_);
    return ConfigureStartStop(start, axis.stop, ZentrelK4NFrequencyStepScalingLinear, axis.step);
  });
}

STDMETHODIMP CZentrelK4N::get_Start(double* value) {
  return SessionFrame(kFrequencyStep, value, [&] {
    *value = FrequencyStepOf(manager_).start;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Stop(double stop) {
  return SessionFrame(kFrequencyStep, [&] {
    const StepSettings axis = FrequencyStepOf(manager_);
    return ConfigureStartStop(axis.start, stop, ZentrelK4NFrequencyStepScalingLinear, axis.step);
  });
}

STDMETHODIMP CZentrelK4N::get_Stop(double* value) {
  return SessionFrame(kFrequencyStep, value, [&] {
    *value = FrequencyStepOf(manager_).stop;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Scaling(ZentrelK4NFrequencyStepScalingEnum scaling) {
  return SessionFrame(kFrequencyStep, [&]() -> HRESULT {
    if (scaling != ZentrelK4NFrequencyStepScalingLinear) {
      return Error(UnsupportedPropertyValue(scaling, "Scaling", FullStop::kNo), kFrequencyStep,
                   status::kEnumerationNotSupported);
    }
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Scaling(ZentrelK4NFrequencyStepScalingEnum* value) {
  return SessionFrame(kFrequencyStep, value, [&] {
    *value = ZentrelK4NFrequencyStepScalingLinear;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Size(double /*size*/) {
  return NotSupported("put_Size", kFrequencyStep);
}

STDMETHODIMP CZentrelK4N::get_Size(double* value) {
  return SessionFrame(kFrequencyStep, value, [&] {
    *value = FrequencyStepOf(manager_).step;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::ConfigureDwell(VARIANT_BOOL /*single_step_enabled*/, double /*dwell*/) {
  return NotSupported("ConfigureDwell", kFrequencyStep);
}

STDMETHODIMP CZentrelK4N::put_SingleStepEnabled(VARIANT_BOOL enabled) {
  return SessionFrame(kFrequencyStep, [&] {
    SweepTrigger trigger = SweepTriggerOf(manager_);
    return manager_.SetSweepTrigger(trigger.settings, enabled != VARIANT_FALSE);
  });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4N::get_SingleStepEnabled(VARIANT_BOOL* value) {
  return SessionFrame(kFrequencyStep, value, [&] {
    *value = SweepTriggerOf(manager_).single_step ? 1 : 0;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Dwell(double dwell) {
  return SessionFrame(kFrequencyStep,
                      [&] { return manager_.SetDwell(dwell * kNanosecondsPerSecond); });
}

STDMETHODIMP CZentrelK4N::get_Dwell(double* value) {
  return SessionFrame(kFrequencyStep, value, [&] {
    *value = DwellOf(manager_);
    return S_OK;
  });
}
