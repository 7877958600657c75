#include "driver/Channel.h"

#include <utility>

#include "driver/WideText.h"

using namespace driver;

void CZentrelK4NChannel::SetOwner(std::shared_ptr<OwnerLink> owner, std::size_t index) {
  Child::SetOwner(std::move(owner));
  index_ = index;
}

STDMETHODIMP CZentrelK4NChannel::get_Enabled(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NChannel::put_Enabled(VARIANT_BOOL /*value*/) {
  return NotSupported(__func__, kInterface);
}

STDMETHODIMP CZentrelK4NChannel::LoadDetectorDataFromFile(BSTR file_name) {
  return RootFrame(
      [&](CZentrelK4N& root) { return root.LoadDetectorDataFromFile(index_, ViewOf(file_name)); });
}

STDMETHODIMP CZentrelK4NChannel::FetchData(SAFEARRAY** data_array, double* initial_x,
                                           double* x_increment) {
  return RootFrame([&](CZentrelK4N& root) {
    return root.FetchData(index_, data_array, initial_x, x_increment);
  });
}

STDMETHODIMP CZentrelK4NChannel::get_FrequencyOffset(double* value) {
  return Read(&measurement::ChannelTransform::offset, value);
}

STDMETHODIMP CZentrelK4NChannel::put_FrequencyOffset(double offset) {
  return ManagerFrame(
      [&](CK4NManager& manager) { return manager.SetChannelOffset(index_, offset); });
}

STDMETHODIMP CZentrelK4NChannel::get_FrequencyMultiplier(double* value) {
  return Read(&measurement::ChannelTransform::multiplier, value);
}

STDMETHODIMP CZentrelK4NChannel::put_FrequencyMultiplier(double multiplier) {
  return ManagerFrame(
      [&](CK4NManager& manager) { return manager.SetChannelMultiplier(index_, multiplier); });
}

STDMETHODIMP CZentrelK4NChannel::get_FrequencyDivider(double* value) {
  return Read(&measurement::ChannelTransform::divider, value);
}

STDMETHODIMP CZentrelK4NChannel::put_FrequencyDivider(double divider) {
  return ManagerFrame(
      [&](CK4NManager& manager) { return manager.SetChannelDivider(index_, divider); });
}

HRESULT CZentrelK4NChannel::Read(double measurement::ChannelTransform::*element, double* value) {
  return ManagerFrame({value}, [&](const CK4NManager& manager) {
    *value = manager.GetChannel(index_).*element;
    return S_OK;
  });
}
