// The double-pulse shape of the pulse generator.
#pragma once

#include "driver/Child.h"

/// Switches the double pulse; the delay, in seconds, is the off time between its two pulses.
class CZentrelK4NPulseGeneratorDouble : public driver::Child<IZentrelK4NPulseGeneratorDouble> {
 public:
  CZentrelK4NPulseGeneratorDouble() : Child(__uuidof(ZentrelK4NPulseGeneratorDouble)) {}

  STDMETHODIMP Configure(VARIANT_BOOL enabled, double delay) override;
  STDMETHODIMP put_Enabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Delay(double delay) override;
  STDMETHODIMP get_Delay(double* value) override;

 protected:
  ~CZentrelK4NPulseGeneratorDouble() = default;
};
