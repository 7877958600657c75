// An object that tells how many references it has.
#pragma once

#include "platform/com/Com.h"

/// Error information without content. Lives where the test puts it; its references are only
/// counted.
class Counted final : public IErrorInfo {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IErrorInfo);
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetGUID(GUID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetSource(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetDescription(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetHelpFile(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetHelpContext(DWORD*) override { return E_NOTIMPL; }

  ULONG references = 1;
};
