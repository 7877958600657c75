#include "driver/PulseGenerator.h"

#include "K4NHardWare/Units.h"
#include "driver/PulseGeneratorDouble.h"
#include "driver/PulseGeneratorOutput.h"
#include "driver/PulsePacketGenerator.h"

using namespace driver;

void CZentrelK4NPulseGenerator::SetOwner(const std::shared_ptr<OwnerLink>& owner) {
  Child::SetOwner(owner);
  CreateChild<CZentrelK4NPulseGeneratorDouble>(owner, double_);
  CreateChild<CZentrelK4NPulseGeneratorOutput>(owner, output_);
  CreateChild<CZentrelK4NPulsePacketGenerator>(owner, packet_);
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_Double(IZentrelK4NPulseGeneratorDouble** value) {
  return Getter(double_.Get(), kInterface, value);
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_Output(IZentrelK4NPulseGeneratorOutput** value) {
  return Getter(output_.Get(), kInterface, value);
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_Packet(IZentrelK4NPulsePacketGenerator** value) {
  return Getter(packet_.Get(), kInterface, value);
}

// Kept: trigger source and gating are taken and ignored.
STDMETHODIMP CZentrelK4NPulseGenerator::Configure(ZentrelK4NPulseTriggerSourceEnum /*source*/,
                                                  double pulse_width,
                                                  VARIANT_BOOL /*gating_enabled*/) {
  return put_Width(pulse_width);
}

STDMETHODIMP CZentrelK4NPulseGenerator::ConfigureExternalTrigger(
    ZentrelK4NPulseExternalTriggerSlopeEnum /*slope*/, double /*delay*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NPulseGenerator::put_InternalTriggerPeriod(double period) {
  return ManagerFrame([&](CK4NManager& manager) {
    return manager.SetPulsePeriod(period * k4n::kNanosecondsPerSecond);
  });
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_InternalTriggerPeriod(double* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    *value = manager.GetPulseSettings().period / k4n::kNanosecondsPerSecond;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPulseGenerator::put_Width(double width) {
  return ManagerFrame([&](CK4NManager& manager) {
    return manager.SetPulseWidth(width * k4n::kNanosecondsPerSecond);
  });
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_Width(double* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    *value = manager.GetPulseSettings().width / k4n::kNanosecondsPerSecond;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4NPulseGenerator::put_GatingEnabled(VARIANT_BOOL /*enabled*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_GatingEnabled(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kInterface);
}

// Kept: the root answers for the trigger source, under a name of its own for the property.
STDMETHODIMP CZentrelK4NPulseGenerator::put_TriggerSource(
    ZentrelK4NPulseTriggerSourceEnum /*source*/) {
  return RootFrame([&](const CZentrelK4N& root) {
    return root.NotSupported("put_TriggerSource_PGenerator", kInterface);
  });
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_TriggerSource(
    ZentrelK4NPulseTriggerSourceEnum* /*value*/) {
  return RootFrame([&](const CZentrelK4N& root) {
    return root.NotSupported("get_TriggerSource_PGenerator", kInterface);
  });
}

STDMETHODIMP CZentrelK4NPulseGenerator::put_ExternalTriggerSlope(
    ZentrelK4NPulseExternalTriggerSlopeEnum /*slope*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_ExternalTriggerSlope(
    ZentrelK4NPulseExternalTriggerSlopeEnum* /*value*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NPulseGenerator::put_ExternalTriggerDelay(double /*delay*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NPulseGenerator::get_ExternalTriggerDelay(double* /*value*/) {
  return NotSupported(__func__, kInterface);
}
