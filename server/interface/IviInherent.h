// The IVI Foundation's inherent interfaces that the type library does not describe (IVI-3.2,
// Inherent Capabilities). The driver imports them; their identities and slot orders are the
// Foundation's.
#pragma once

#include "platform/com/Com.h"

/// Named in error information only: no object of the driver answers a query for it.
class IIviDriver;

MIDL_INTERFACE("47ED5185-A398-11D4-BA58-000064657374")
IIviComponentIdentity : public IUnknown {
 public:
  virtual HRESULT STDMETHODCALLTYPE get_Description(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Revision(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Vendor(BSTR* pVal) = 0;
};

MIDL_INTERFACE("47ED5186-A398-11D4-BA58-000064657374")
IIviDriverIdentity : public IIviComponentIdentity {
 public:
  virtual HRESULT STDMETHODCALLTYPE get_InstrumentManufacturer(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_InstrumentModel(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_InstrumentFirmwareRevision(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Identifier(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_SupportedInstrumentModels(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_SpecificationMajorVersion(LONG* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_SpecificationMinorVersion(LONG* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_GroupCapabilities(BSTR* pVal) = 0;
};

MIDL_INTERFACE("47ED5188-A398-11D4-BA58-000064657374")
IIviDriverOperation : public IUnknown {
 public:
  virtual HRESULT STDMETHODCALLTYPE get_LogicalName(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_IoResourceDescriptor(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Cache(VARIANT_BOOL* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_Cache(VARIANT_BOOL newVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_InterchangeCheck(VARIANT_BOOL* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_InterchangeCheck(VARIANT_BOOL newVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_QueryInstrumentStatus(VARIANT_BOOL* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_QueryInstrumentStatus(VARIANT_BOOL newVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_RangeCheck(VARIANT_BOOL* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_RangeCheck(VARIANT_BOOL newVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_RecordCoercions(VARIANT_BOOL* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_RecordCoercions(VARIANT_BOOL newVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Simulate(VARIANT_BOOL* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_Simulate(VARIANT_BOOL newVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_DriverSetup(BSTR* pVal) = 0;
  virtual HRESULT STDMETHODCALLTYPE InvalidateAllAttributes() = 0;
  virtual HRESULT STDMETHODCALLTYPE ClearInterchangeWarnings() = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNextInterchangeWarning(BSTR* Warning) = 0;
  virtual HRESULT STDMETHODCALLTYPE ResetInterchangeCheck() = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNextCoercionRecord(BSTR* Record) = 0;
};

__CRT_UUID_DECL(IIviDriver, 0x47ed5184, 0xa398, 0x11d4, 0xba, 0x58, 0x00, 0x00, 0x64, 0x65, 0x73,
                0x74)
__CRT_UUID_DECL(IIviComponentIdentity, 0x47ed5185, 0xa398, 0x11d4, 0xba, 0x58, 0x00, 0x00, 0x64,
                0x65, 0x73, 0x74)
__CRT_UUID_DECL(IIviDriverIdentity, 0x47ed5186, 0xa398, 0x11d4, 0xba, 0x58, 0x00, 0x00, 0x64, 0x65,
                0x73, 0x74)
__CRT_UUID_DECL(IIviDriverOperation, 0x47ed5188, 0xa398, 0x11d4, 0xba, 0x58, 0x00, 0x00, 0x64, 0x65,
                0x73, 0x74)

inline constexpr IID IID_IIviDriver = {
    0x47ed5184, 0xa398, 0x11d4, {0xba, 0x58, 0x00, 0x00, 0x64, 0x65, 0x73, 0x74}};
