// The packet shape of the pulse generator: pulses of individual widths and gaps.
#pragma once

#include "driver/Child.h"

/// Widths and delays in seconds; the arrays come back as the instrument set them, the last delay
/// filling the period.
class CZentrelK4NPulsePacketGenerator : public driver::Child<IZentrelK4NPulsePacketGenerator> {
 public:
  CZentrelK4NPulsePacketGenerator() : Child(__uuidof(ZentrelK4NPulsePacketGenerator)) {}

  STDMETHODIMP put_Enabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override;
  STDMETHODIMP Configure(VARIANT_BOOL enabled, SAFEARRAY** width, SAFEARRAY** delay) override;

 protected:
  ~CZentrelK4NPulsePacketGenerator() = default;
};
