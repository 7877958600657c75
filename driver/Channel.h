// One measurement channel.
#pragma once

#include <cstddef>
#include <memory>

#include "driver/Child.h"

/// Hands a channel's calls on to its root, with the channel's index (0 to 2). Frequency transform:
/// hertz.
class CZentrelK4NChannel : public driver::Child<IZentrelK4NChannel> {
 public:
  CZentrelK4NChannel() : Child(__uuidof(ZentrelK4NChannel)) {}
  void SetOwner(std::shared_ptr<driver::OwnerLink> owner, std::size_t index);

  STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Enabled(VARIANT_BOOL value) override;
  STDMETHODIMP LoadDetectorDataFromFile(BSTR file_name) override;
  STDMETHODIMP FetchData(SAFEARRAY** data_array, double* initial_x, double* x_increment) override;
  STDMETHODIMP get_FrequencyOffset(double* value) override;
  STDMETHODIMP put_FrequencyOffset(double offset) override;
  STDMETHODIMP get_FrequencyMultiplier(double* value) override;
  STDMETHODIMP put_FrequencyMultiplier(double multiplier) override;
  STDMETHODIMP get_FrequencyDivider(double* value) override;
  STDMETHODIMP put_FrequencyDivider(double divider) override;

 protected:
  ~CZentrelK4NChannel() = default;

 private:
  HRESULT Read(double measurement::ChannelTransform::*element, double* value);

  std::size_t index_ = 0;
};
