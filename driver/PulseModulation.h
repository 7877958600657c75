// The pulse modulator of the RF output.
#pragma once

#include "driver/Child.h"

/// Kept: without a modulator on the instrument, the switch and the polarity fail with a bare
/// 0x80047012 when they are read, while they can be set and the source reads as ever.
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
