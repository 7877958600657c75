// The trigger connector of the instrument.
#pragma once

#include "driver/Child.h"

/// The width is in seconds (whole microseconds on the instrument). Kept: every member succeeds,
/// with or without a session; a refusal shows in ErrorQuery and in the values read back. Without a
/// session setters do nothing, and getters return the settings of the last one.
class CZentrelK4NTriggerOutput : public driver::Child<IZentrelK4NTriggerOutput> {
 public:
  CZentrelK4NTriggerOutput() : Child(__uuidof(ZentrelK4NTriggerOutput)) {}

  STDMETHODIMP put_Width(double width) override;
  STDMETHODIMP get_Width(double* value) override;
  STDMETHODIMP put_Mode(ZentrelK4NTriggerOutputModeEnum mode) override;
  STDMETHODIMP get_Mode(ZentrelK4NTriggerOutputModeEnum* value) override;
  STDMETHODIMP put_Polarity(ZentrelK4NTriggerOutputPolarityEnum polarity) override;
  STDMETHODIMP get_Polarity(ZentrelK4NTriggerOutputPolarityEnum* value) override;
  STDMETHODIMP put_Enabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override;

 protected:
  ~CZentrelK4NTriggerOutput() = default;

 private:
  template <typename Change>
  HRESULT Set(Change change) const;
  template <typename Out, typename Pick>
  HRESULT Read(Out* value, Pick pick) const;
};
