#include "driver/PulsePacketGenerator.h"

#include "driver/ArrayArgument.h"

using namespace driver;

STDMETHODIMP CZentrelK4NPulsePacketGenerator::put_Enabled(VARIANT_BOOL enabled) {
  return ManagerFrame(
      [&](CK4NManager& manager) { return manager.SetPacketEnabled(enabled != VARIANT_FALSE); });
}

STDMETHODIMP CZentrelK4NPulsePacketGenerator::get_Enabled(VARIANT_BOOL* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    *value = BoolAsTrue(manager.GetPulseSettings().packet_enabled);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPulsePacketGenerator::Configure(VARIANT_BOOL enabled, SAFEARRAY** width,
                                                        SAFEARRAY** delay) {
  return ManagerFrame([&](CK4NManager& manager) {
    return manager.ConfigurePacket(enabled != VARIANT_FALSE, ArrayAt(width), ArrayAt(delay));
  });
}
