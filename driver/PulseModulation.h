// The pulse modulator of the RF output.
#pragma once

#include "driver/Child.h"

/// Kept: if the instrument has no modulator, reading the switch or the polarity fails with
/// 0x80047012 and no error text; both can be set all the same, and the source can be read.
class CZentrelK4NPulseModulation : public driver::Child<IZentrelK4NPulseModulation> {
 public:
  CZentrelK4NPulseModulation() : Child(__uuidof(ZentrelK4NPulseModulation)) {}

  STDMETHODIMP put_Enabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Source(ZentrelK4NPulseModulationSourceEnum source) override;
  STDMETHODIMP get_Source(ZentrelK4NPulseModulationSourceEnum* value) override;
  STDMETHODIMP put_ExternalPolarity(
      ZentrelK4NPulseModulationExternalPolarityEnum polarity) override;
  STDMETHODIMP get_ExternalPolarity(ZentrelK4NPulseModulationExternalPolarityEnum* value) override;

 protected:
  ~CZentrelK4NPulseModulation() = default;
};
