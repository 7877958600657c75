#include "driver/PulseGeneratorDouble.h"

#include "K4NHardWare/Units.h"

using namespace driver;

// Kept: the switch is set even if the delay is refused, and only the result of the switch is
// returned.
STDMETHODIMP CZentrelK4NPulseGeneratorDouble::Configure(VARIANT_BOOL enabled, double delay) {
  return ManagerFrame([&](CK4NManager& manager) {
    Discard(manager.SetDoublePulseDelay(delay * k4n::kNanosecondsPerSecond));
    return manager.SetDoublePulseEnabled(enabled != VARIANT_FALSE);
  });
}

STDMETHODIMP CZentrelK4NPulseGeneratorDouble::put_Enabled(VARIANT_BOOL enabled) {
  return ManagerFrame([&](CK4NManager& manager) {
    return manager.SetDoublePulseEnabled(enabled != VARIANT_FALSE);
  });
}

STDMETHODIMP CZentrelK4NPulseGeneratorDouble::get_Enabled(VARIANT_BOOL* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    *value = BoolAsTrue(manager.GetPulseSettings().double_enabled);
    return S_OK;
  });
}

// Setting the switch to its present value sends the new delay. Kept: if the new delay is refused,
// the former one is sent again.
STDMETHODIMP CZentrelK4NPulseGeneratorDouble::put_Delay(double delay) {
  return ManagerFrame([&](CK4NManager& manager) {
    Discard(manager.SetDoublePulseDelay(delay * k4n::kNanosecondsPerSecond));
    return manager.SetDoublePulseEnabled(manager.GetPulseSettings().double_enabled);
  });
}

STDMETHODIMP CZentrelK4NPulseGeneratorDouble::get_Delay(double* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    *value = manager.GetPulseSettings().double_delay / k4n::kNanosecondsPerSecond;
    return S_OK;
  });
}
