#include "driver/PulseGeneratorOutput.h"

STDMETHODIMP CZentrelK4NPulseGeneratorOutput::Configure(
    ZentrelK4NPulseOutputPolarityEnum /*polarity*/, VARIANT_BOOL /*enabled*/) {
  return RootNotSupported("Configure_PGeneratorOutput");
}

STDMETHODIMP CZentrelK4NPulseGeneratorOutput::put_Polarity(
    ZentrelK4NPulseOutputPolarityEnum /*polarity*/) {
  return RootNotSupported("put_Polarity_PGeneratorOutput");
}

STDMETHODIMP CZentrelK4NPulseGeneratorOutput::get_Polarity(
    ZentrelK4NPulseOutputPolarityEnum* /*value*/) {
  return RootNotSupported("get_Polarity_PGeneratorOutput");
}

STDMETHODIMP CZentrelK4NPulseGeneratorOutput::put_Enabled(VARIANT_BOOL /*enabled*/) {
  return RootNotSupported("put_Enabled_PGeneratorOutput");
}

STDMETHODIMP CZentrelK4NPulseGeneratorOutput::get_Enabled(VARIANT_BOOL* /*value*/) {
  return RootNotSupported("get_Enabled_PGeneratorOutput");
}

HRESULT CZentrelK4NPulseGeneratorOutput::RootNotSupported(std::string_view member) {
  return RootFrame([&](const CZentrelK4N& root) { return root.NotSupported(member, kInterface); });
}
