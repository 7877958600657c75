#include "driver/PowerStep.h"

#include "driver/Units.h"

STDMETHODIMP CZentrelK4NPowerStep::ConfigureStartStop(double start, double stop, double step_size) {
  return SessionFrame([&](CK4NManager& manager) {
    manager.SetPowerStep(start, stop, step_size);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::put_Start(double start) {
  return Replace(&StepSettings::start, start);
}

STDMETHODIMP CZentrelK4NPowerStep::get_Start(double* value) {
  return Read(&StepSettings::start, value);
}

STDMETHODIMP CZentrelK4NPowerStep::put_Stop(double stop) {
  return Replace(&StepSettings::stop, stop);
}

STDMETHODIMP CZentrelK4NPowerStep::get_Stop(double* value) {
  return Read(&StepSettings::stop, value);
}

STDMETHODIMP CZentrelK4NPowerStep::put_Size(double size) {
  return Replace(&StepSettings::step, size);
}

STDMETHODIMP CZentrelK4NPowerStep::get_Size(double* value) {
  return Read(&StepSettings::step, value);
}

STDMETHODIMP CZentrelK4NPowerStep::ConfigureDwell(VARIANT_BOOL /*single_step_enabled*/,
                                                  double /*dwell*/) {
  return NotSupported("CZentrelK4NPowerStep::ConfigureDwell", kInterface);
}

STDMETHODIMP CZentrelK4NPowerStep::put_SingleStepEnabled(VARIANT_BOOL enabled) {
  return SessionFrame([&](CK4NManager& manager) {
    SweepTriggerSettings trigger;
    bool single_step = false;
    manager.GetSweepTrigger(trigger, single_step);
    manager.SetSweepTrigger(trigger, enabled != VARIANT_FALSE);
    return S_OK;
  });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4NPowerStep::get_SingleStepEnabled(VARIANT_BOOL* value) {
  return SessionFrame(value, [&](CK4NManager& manager) {
    SweepTriggerSettings trigger;
    bool single_step = false;
    manager.GetSweepTrigger(trigger, single_step);
    *value = single_step ? 1 : 0;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::put_Dwell(double dwell) {
  return SessionFrame([&](CK4NManager& manager) {
    manager.SetDwell(dwell * kNanosecondsPerSecond);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::get_Dwell(double* value) {
  return SessionFrame(value, [&](CK4NManager& manager) {
    double nanoseconds = 0.0;
    manager.GetDwell(nanoseconds);
    *value = nanoseconds / kNanosecondsPerSecond;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::Reset() {
  return NotSupported("CZentrelK4NPowerStep::Reset", kInterface);
}

HRESULT CZentrelK4NPowerStep::Replace(double StepSettings::*element, double value) {
  return SessionFrame([&](CK4NManager& manager) {
    StepSettings axis;
    manager.GetPowerStep(axis.start, axis.stop, axis.step);
    axis.*element = value;
    manager.SetPowerStep(axis.start, axis.stop, axis.step);
    return S_OK;
  });
}

HRESULT CZentrelK4NPowerStep::Read(double StepSettings::*element, double* value) {
  return SessionFrame(value, [&](CK4NManager& manager) {
    StepSettings axis;
    manager.GetPowerStep(axis.start, axis.stop, axis.step);
    *value = axis.*element;
    return S_OK;
  });
}
