#include "driver/PowerStep.h"

#include "K4NHardWare/Units.h"

using namespace driver;

STDMETHODIMP CZentrelK4NPowerStep::ConfigureStartStop(double start, double stop, double step_size) {
  return SessionFrame([&](CK4NManager& manager) {
    Discard(manager.SetPowerStep({.start = start, .stop = stop, .step = step_size}));
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::put_Start(double start) {
  return Replace(&k4n::StepSettings::start, start);
}

STDMETHODIMP CZentrelK4NPowerStep::get_Start(double* value) {
  return Read(&k4n::StepSettings::start, value);
}

STDMETHODIMP CZentrelK4NPowerStep::put_Stop(double stop) {
  return Replace(&k4n::StepSettings::stop, stop);
}

STDMETHODIMP CZentrelK4NPowerStep::get_Stop(double* value) {
  return Read(&k4n::StepSettings::stop, value);
}

STDMETHODIMP CZentrelK4NPowerStep::put_Size(double size) {
  return Replace(&k4n::StepSettings::step, size);
}

STDMETHODIMP CZentrelK4NPowerStep::get_Size(double* value) {
  return Read(&k4n::StepSettings::step, value);
}

STDMETHODIMP CZentrelK4NPowerStep::ConfigureDwell(VARIANT_BOOL /*single_step_enabled*/,
                                                  double /*dwell*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NPowerStep::put_SingleStepEnabled(VARIANT_BOOL enabled) {
  return SessionFrame([&](CK4NManager& manager) {
    k4n::SweepTriggerSettings trigger = manager.GetSweepTrigger();
    trigger.single_step = enabled != VARIANT_FALSE;
    Discard(manager.SetSweepTrigger(trigger));
    return S_OK;
  });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4NPowerStep::get_SingleStepEnabled(VARIANT_BOOL* value) {
  return SessionFrame({value}, [&](CK4NManager& manager) {
    *value = BoolAsOne(manager.GetSweepTrigger().single_step);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::put_Dwell(double dwell) {
  return SessionFrame([&](CK4NManager& manager) {
    Discard(manager.SetDwell(dwell * k4n::kNanosecondsPerSecond));
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::get_Dwell(double* value) {
  return SessionFrame({value}, [&](CK4NManager& manager) {
    *value = manager.GetDwell() / k4n::kNanosecondsPerSecond;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPowerStep::Reset() { return NotSupported(__func__, kInterface); }

HRESULT CZentrelK4NPowerStep::Replace(double k4n::StepSettings::*element, double value) {
  return SessionFrame([&](CK4NManager& manager) {
    k4n::StepSettings axis = manager.GetPowerStep();
    axis.*element = value;
    Discard(manager.SetPowerStep(axis));
    return S_OK;
  });
}

HRESULT CZentrelK4NPowerStep::Read(double k4n::StepSettings::*element, double* value) {
  return SessionFrame({value}, [&](CK4NManager& manager) {
    *value = manager.GetPowerStep().*element;
    return S_OK;
  });
}
