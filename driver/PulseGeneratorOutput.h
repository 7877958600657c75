// The external output of the pulse generator, which the instruments do not have.
#pragma once

#include <string_view>

#include "driver/Child.h"

/// Every member is not supported; the root reports so, under names of its own.
class CZentrelK4NPulseGeneratorOutput : public driver::Child<IZentrelK4NPulseGeneratorOutput> {
 public:
  CZentrelK4NPulseGeneratorOutput() : Child(__uuidof(ZentrelK4NPulseGeneratorOutput)) {}

  STDMETHODIMP Configure(ZentrelK4NPulseOutputPolarityEnum polarity, VARIANT_BOOL enabled) override;
  STDMETHODIMP put_Polarity(ZentrelK4NPulseOutputPolarityEnum polarity) override;
  STDMETHODIMP get_Polarity(ZentrelK4NPulseOutputPolarityEnum* value) override;
  STDMETHODIMP put_Enabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override;

 protected:
  ~CZentrelK4NPulseGeneratorOutput() = default;

 private:
  HRESULT RootNotSupported(std::string_view member);
};
