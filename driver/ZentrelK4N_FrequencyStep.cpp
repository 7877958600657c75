// IZentrelK4NFrequencyStep. Single step and dwell are one setting for all kinds of sweep:
// IZentrelK4NList shares these member functions.
#include "K4NHardWare/Units.h"
#include "driver/ZentrelK4N.h"

using namespace driver;

namespace {

const IID& kFrequencyStep = __uuidof(IZentrelK4NFrequencyStep);

}  // namespace

// Kept: a refusal of the instrument shows in ErrorQuery only.
STDMETHODIMP CZentrelK4N::ConfigureStartStop(double start, double stop,
                                             ZentrelK4NFrequencyStepScalingEnum scaling,
                                             double step_size) {
  return SessionFrame(kFrequencyStep, [&]() -> HRESULT {
    if (scaling != ZentrelK4NFrequencyStepScalingLinear) {
      return Error(UnsupportedParameterValue(scaling, "Scaling", "ConfigureStartStop"),
                   kFrequencyStep, Status::kEnumerationNotSupported);
    }
    Discard(manager_.SetFrequencyStep({.start = start, .stop = stop, .step = step_size}));
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Start(double start) {
  return SessionFrame(kFrequencyStep, [&] {
    const k4n::StepSettings axis = manager_.GetFrequencyStep();
    return ConfigureStartStop(start, axis.stop, ZentrelK4NFrequencyStepScalingLinear, axis.step);
  });
}

STDMETHODIMP CZentrelK4N::get_Start(double* value) {
  return SessionFrame(kFrequencyStep, {value}, [&] {
    *value = manager_.GetFrequencyStep().start;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Stop(double stop) {
  return SessionFrame(kFrequencyStep, [&] {
    const k4n::StepSettings axis = manager_.GetFrequencyStep();
    return ConfigureStartStop(axis.start, stop, ZentrelK4NFrequencyStepScalingLinear, axis.step);
  });
}

STDMETHODIMP CZentrelK4N::get_Stop(double* value) {
  return SessionFrame(kFrequencyStep, {value}, [&] {
    *value = manager_.GetFrequencyStep().stop;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Scaling(ZentrelK4NFrequencyStepScalingEnum scaling) {
  return SessionFrame(kFrequencyStep, [&]() -> HRESULT {
    if (scaling != ZentrelK4NFrequencyStepScalingLinear) {
      return Error(UnsupportedPropertyValue(scaling, "Scaling", FullStop::kNo), kFrequencyStep,
                   Status::kEnumerationNotSupported);
    }
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Scaling(ZentrelK4NFrequencyStepScalingEnum* value) {
  return SessionFrame(kFrequencyStep, {value}, [&] {
    *value = ZentrelK4NFrequencyStepScalingLinear;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Size(double /*size*/) {
  return NotSupported(__func__, kFrequencyStep);
}

STDMETHODIMP CZentrelK4N::get_Size(double* value) {
  return SessionFrame(kFrequencyStep, {value}, [&] {
    *value = manager_.GetFrequencyStep().step;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::ConfigureDwell(VARIANT_BOOL /*single_step_enabled*/, double /*dwell*/) {
  return NotSupported(__func__, kFrequencyStep);
}

STDMETHODIMP CZentrelK4N::put_SingleStepEnabled(VARIANT_BOOL enabled) {
  return SessionFrame(kFrequencyStep, [&] {
    k4n::SweepTriggerSettings trigger = manager_.GetSweepTrigger();
    trigger.single_step = enabled != VARIANT_FALSE;
    return manager_.SetSweepTrigger(trigger);
  });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4N::get_SingleStepEnabled(VARIANT_BOOL* value) {
  return SessionFrame(kFrequencyStep, {value}, [&] {
    *value = BoolAsOne(manager_.GetSweepTrigger().single_step);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Dwell(double dwell) {
  return SessionFrame(kFrequencyStep,
                      [&] { return manager_.SetDwell(dwell * k4n::kNanosecondsPerSecond); });
}

STDMETHODIMP CZentrelK4N::get_Dwell(double* value) {
  return SessionFrame(kFrequencyStep, {value}, [&] {
    *value = manager_.GetDwell() / k4n::kNanosecondsPerSecond;
    return S_OK;
  });
}
