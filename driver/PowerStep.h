// The stepping of the level.
#pragma once

#include "driver/Child.h"

/// Levels in dBm, the step in dB, the dwell in seconds. Kept: no setter reports a refusal of the
/// instrument; it shows in ErrorQuery only.
class CZentrelK4NPowerStep : public driver::Child<IZentrelK4NPowerStep> {
 public:
  CZentrelK4NPowerStep() : Child(__uuidof(ZentrelK4NPowerStep)) {}

  STDMETHODIMP ConfigureStartStop(double start, double stop, double step_size) override;
  STDMETHODIMP put_Start(double start) override;
  STDMETHODIMP get_Start(double* value) override;
  STDMETHODIMP put_Stop(double stop) override;
  STDMETHODIMP get_Stop(double* value) override;
  STDMETHODIMP put_Size(double size) override;
  STDMETHODIMP get_Size(double* value) override;
  STDMETHODIMP ConfigureDwell(VARIANT_BOOL single_step_enabled, double dwell) override;
  STDMETHODIMP put_SingleStepEnabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_SingleStepEnabled(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Dwell(double dwell) override;
  STDMETHODIMP get_Dwell(double* value) override;
  STDMETHODIMP Reset() override;

 protected:
  ~CZentrelK4NPowerStep() = default;

 private:
  HRESULT Replace(double k4n::StepSettings::*element, double value);
  HRESULT Read(double k4n::StepSettings::*element, double* value);
};
