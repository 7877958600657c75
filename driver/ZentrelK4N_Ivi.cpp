// The IVI inherent interfaces. Of all their members one works, ErrorQuery; the others say that they
// are not supported.
#include <optional>
#include <string>

#include "driver/WideText.h"
#include "driver/ZentrelK4N.h"

namespace {

const IID& kIdentityBase = __uuidof(IIviComponentIdentity);
const IID& kIdentity = __uuidof(IIviDriverIdentity);
const IID& kOperation = __uuidof(IIviDriverOperation);
const IID& kUtility = __uuidof(IIviDriverUtility);

}  // namespace

STDMETHODIMP CZentrelK4N::get_Description(BSTR* /*value*/) {
  return NotSupported("get_Description", kIdentityBase);
}

STDMETHODIMP CZentrelK4N::get_Revision(BSTR* /*value*/) {
  return NotSupported("get_Revision", kIdentityBase);
}

STDMETHODIMP CZentrelK4N::get_Vendor(BSTR* /*value*/) {
  return NotSupported("get_Vendor", kIdentityBase);
}

STDMETHODIMP CZentrelK4N::get_InstrumentManufacturer(BSTR* /*value*/) {
  return NotSupported("get_InstrumentManufacturer", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_InstrumentModel(BSTR* /*value*/) {
  return NotSupported("get_InstrumentModel", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_InstrumentFirmwareRevision(BSTR* /*value*/) {
  return NotSupported("get_InstrumentFirmwareRevision", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_Identifier(BSTR* /*value*/) {
  return NotSupported("get_Identifier", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_SupportedInstrumentModels(BSTR* /*value*/) {
  return NotSupported("get_SupportedInstrumentModels", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_SpecificationMajorVersion(LONG* /*value*/) {
  return NotSupported("get_SpecificationMajorVersion", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_SpecificationMinorVersion(LONG* /*value*/) {
  return NotSupported("get_SpecificationMinorVersion", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_GroupCapabilities(BSTR* /*value*/) {
  return NotSupported("get_GroupCapabilities", kIdentity);
}

STDMETHODIMP CZentrelK4N::get_LogicalName(BSTR* /*value*/) {
  return NotSupported("get_LogicalName", kOperation);
}

STDMETHODIMP CZentrelK4N::get_IoResourceDescriptor(BSTR* /*value*/) {
  return NotSupported("get_IoResourceDescriptor", kOperation);
}

STDMETHODIMP CZentrelK4N::get_Cache(VARIANT_BOOL* /*value*/) {
  return NotSupported("get_Cache", kOperation);
}

STDMETHODIMP CZentrelK4N::put_Cache(VARIANT_BOOL /*value*/) {
  return NotSupported("put_Cache", kOperation);
}

STDMETHODIMP CZentrelK4N::get_InterchangeCheck(VARIANT_BOOL* /*value*/) {
  return NotSupported("get_InterchangeCheck", kOperation);
}

STDMETHODIMP CZentrelK4N::put_InterchangeCheck(VARIANT_BOOL /*value*/) {
  return NotSupported("put_InterchangeCheck", kOperation);
}

STDMETHODIMP CZentrelK4N::get_QueryInstrumentStatus(VARIANT_BOOL* /*value*/) {
  return NotSupported("get_QueryInstrumentStatus", kOperation);
}

STDMETHODIMP CZentrelK4N::put_QueryInstrumentStatus(VARIANT_BOOL /*value*/) {
  return NotSupported("put_QueryInstrumentStatus", kOperation);
}

STDMETHODIMP CZentrelK4N::get_RangeCheck(VARIANT_BOOL* /*value*/) {
  return NotSupported("get_RangeCheck", kOperation);
}

STDMETHODIMP CZentrelK4N::put_RangeCheck(VARIANT_BOOL /*value*/) {
  return NotSupported("put_RangeCheck", kOperation);
}

STDMETHODIMP CZentrelK4N::get_RecordCoercions(VARIANT_BOOL* /*value*/) {
  return NotSupported("get_RecordCoercions", kOperation);
}

STDMETHODIMP CZentrelK4N::put_RecordCoercions(VARIANT_BOOL /*value*/) {
  return NotSupported("put_RecordCoercions", kOperation);
}

STDMETHODIMP CZentrelK4N::get_Simulate(VARIANT_BOOL* /*value*/) {
  return NotSupported("get_Simulate", kOperation);
}

STDMETHODIMP CZentrelK4N::put_Simulate(VARIANT_BOOL /*value*/) {
  return NotSupported("put_Simulate", kOperation);
}

STDMETHODIMP CZentrelK4N::get_DriverSetup(BSTR* /*value*/) {
  return NotSupported("get_DriverSetup", kOperation);
}

STDMETHODIMP CZentrelK4N::InvalidateAllAttributes() {
  return NotSupported("InvalidateAllAttributes", kOperation);
}

STDMETHODIMP CZentrelK4N::ClearInterchangeWarnings() {
  return NotSupported("ClearInterchangeWarnings", kOperation);
}

STDMETHODIMP CZentrelK4N::GetNextInterchangeWarning(BSTR* /*value*/) {
  return NotSupported("GetNextInterchangeWarning", kOperation);
}

STDMETHODIMP CZentrelK4N::ResetInterchangeCheck() {
  return NotSupported("ResetInterchangeCheck", kOperation);
}

STDMETHODIMP CZentrelK4N::GetNextCoercionRecord(BSTR* /*value*/) {
  return NotSupported("GetNextCoercionRecord", kOperation);
}

STDMETHODIMP CZentrelK4N::Reset() { return NotSupported("Reset", kUtility); }

STDMETHODIMP CZentrelK4N::ResetWithDefaults() {
  return NotSupported("ResetWithDefaults", kUtility);
}

STDMETHODIMP CZentrelK4N::Disable() { return NotSupported("Disable", kUtility); }

STDMETHODIMP CZentrelK4N::SelfTest(LONG* /*test_result*/, BSTR* /*test_message*/) {
  return NotSupported("SelfTest", kUtility);
}

// Takes the oldest failure off the list; a text that the client passes in is left alone.
STDMETHODIMP CZentrelK4N::ErrorQuery(LONG* error_code, BSTR* error_message) {
  if (error_code == nullptr || error_message == nullptr) {
    return E_POINTER;
  }
  return SessionFrame(kUtility, [&] {
    std::int32_t code{};
    std::optional<std::string> message;
    manager_.ErrorQuery(code, message);
    *error_message = message ? NewBstr(os::ToWide(*message)) : nullptr;
    *error_code = code;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::LockObject() { return NotSupported("LockObject", kUtility); }

STDMETHODIMP CZentrelK4N::UnlockObject() { return NotSupported("UnlockObject", kUtility); }
