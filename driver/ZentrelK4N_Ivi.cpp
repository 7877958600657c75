// The IVI inherent interfaces. Only ErrorQuery is implemented; all other members report that they
// are not supported.
#include <optional>
#include <string>

#include "driver/WideText.h"
#include "driver/ZentrelK4N.h"

using namespace driver;

namespace {

const IID& kIdentityBase = __uuidof(IIviComponentIdentity);
const IID& kIdentity = __uuidof(IIviDriverIdentity);
const IID& kOperation = __uuidof(IIviDriverOperation);
const IID& kUtility = __uuidof(IIviDriverUtility);

}  // namespace

STDMETHODIMP CZentrelK4N::get_Description(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentityBase);
}

STDMETHODIMP CZentrelK4N::get_Revision(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentityBase);
}

STDMETHODIMP CZentrelK4N::get_Vendor(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentityBase);
}

STDMETHODIMP CZentrelK4N::get_InstrumentManufacturer(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_InstrumentModel(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_InstrumentFirmwareRevision(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_Identifier(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_SupportedInstrumentModels(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_SpecificationMajorVersion(LONG* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_SpecificationMinorVersion(LONG* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_GroupCapabilities(BSTR* /*value*/) {
  return NotSupported(__func__, kIdentity);
}

STDMETHODIMP CZentrelK4N::get_LogicalName(BSTR* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_IoResourceDescriptor(BSTR* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_Cache(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::put_Cache(VARIANT_BOOL /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_InterchangeCheck(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::put_InterchangeCheck(VARIANT_BOOL /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_QueryInstrumentStatus(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::put_QueryInstrumentStatus(VARIANT_BOOL /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_RangeCheck(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::put_RangeCheck(VARIANT_BOOL /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_RecordCoercions(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::put_RecordCoercions(VARIANT_BOOL /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_Simulate(VARIANT_BOOL* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::put_Simulate(VARIANT_BOOL /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::get_DriverSetup(BSTR* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::InvalidateAllAttributes() { return NotSupported(__func__, kOperation); }

STDMETHODIMP CZentrelK4N::ClearInterchangeWarnings() { return NotSupported(__func__, kOperation); }

STDMETHODIMP CZentrelK4N::GetNextInterchangeWarning(BSTR* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::ResetInterchangeCheck() { return NotSupported(__func__, kOperation); }

STDMETHODIMP CZentrelK4N::GetNextCoercionRecord(BSTR* /*value*/) {
  return NotSupported(__func__, kOperation);
}

STDMETHODIMP CZentrelK4N::Reset() { return NotSupported(__func__, kUtility); }

STDMETHODIMP CZentrelK4N::ResetWithDefaults() { return NotSupported(__func__, kUtility); }

STDMETHODIMP CZentrelK4N::Disable() { return NotSupported(__func__, kUtility); }

STDMETHODIMP CZentrelK4N::SelfTest(LONG* /*test_result*/, BSTR* /*test_message*/) {
  return NotSupported(__func__, kUtility);
}

// Removes the oldest failure from the error trail; a text that the client passes in is not freed.
STDMETHODIMP CZentrelK4N::ErrorQuery(LONG* error_code, BSTR* error_message) {
  return SessionFrame(kUtility, {error_code, error_message}, [&] {
    const k4n::ErrorReport report = manager_.ErrorQuery();
    *error_message = report.message ? NewBstr(os::ToWide(*report.message)) : nullptr;
    *error_code = ToCode(report.status);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::LockObject() { return NotSupported(__func__, kUtility); }

STDMETHODIMP CZentrelK4N::UnlockObject() { return NotSupported(__func__, kUtility); }
