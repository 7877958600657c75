// The pulse generator behind the pulse modulator.
#pragma once

#include <memory>

#include "driver/Child.h"

/// Times in seconds. The settings are kept without a session, too; they are sent while the
/// modulator is on. Owns the objects of the double pulse, the output and the packet.
class CZentrelK4NPulseGenerator : public driver::Child<IZentrelK4NPulseGenerator> {
 public:
  CZentrelK4NPulseGenerator() : Child(__uuidof(ZentrelK4NPulseGenerator)) {}
  /// Without a root, too, it has the three objects.
  void FinalConstruct() { SetOwner(nullptr); }
  /// Makes the three objects anew, for this root. One that cannot be made is missing: its getter
  /// fails.
  void SetOwner(const std::shared_ptr<driver::OwnerLink>& owner);

  STDMETHODIMP get_Double(IZentrelK4NPulseGeneratorDouble** value) override;
  STDMETHODIMP get_Output(IZentrelK4NPulseGeneratorOutput** value) override;
  STDMETHODIMP get_Packet(IZentrelK4NPulsePacketGenerator** value) override;
  STDMETHODIMP Configure(ZentrelK4NPulseTriggerSourceEnum pulse_trigger_source, double pulse_width,
                         VARIANT_BOOL gating_enabled) override;
  STDMETHODIMP ConfigureExternalTrigger(ZentrelK4NPulseExternalTriggerSlopeEnum slope,
                                        double delay) override;
  STDMETHODIMP put_InternalTriggerPeriod(double period) override;
  STDMETHODIMP get_InternalTriggerPeriod(double* value) override;
  STDMETHODIMP put_Width(double width) override;
  STDMETHODIMP get_Width(double* value) override;
  STDMETHODIMP put_GatingEnabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_GatingEnabled(VARIANT_BOOL* value) override;
  STDMETHODIMP put_TriggerSource(ZentrelK4NPulseTriggerSourceEnum source) override;
  STDMETHODIMP get_TriggerSource(ZentrelK4NPulseTriggerSourceEnum* value) override;
  STDMETHODIMP put_ExternalTriggerSlope(ZentrelK4NPulseExternalTriggerSlopeEnum slope) override;
  STDMETHODIMP get_ExternalTriggerSlope(ZentrelK4NPulseExternalTriggerSlopeEnum* value) override;
  STDMETHODIMP put_ExternalTriggerDelay(double delay) override;
  STDMETHODIMP get_ExternalTriggerDelay(double* value) override;

 protected:
  ~CZentrelK4NPulseGenerator() = default;

 private:
  ComPtr<IZentrelK4NPulseGeneratorDouble> double_;
  ComPtr<IZentrelK4NPulseGeneratorOutput> output_;
  ComPtr<IZentrelK4NPulsePacketGenerator> packet_;
};
