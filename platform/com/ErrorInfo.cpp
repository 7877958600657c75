// Error information objects, and the one that each thread holds.
#include <atomic>

#include "platform/com/ClassKeys.h"
#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "platform/com/ThreadErrorInfo.h"

namespace {

/// What CreateErrorInfo makes. It is filled before it is handed on, so that it needs no lock.
class ErrorInfo final : public ICreateErrorInfo, public IErrorInfo {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(ICreateErrorInfo)) {
      *object = static_cast<ICreateErrorInfo*>(this);
    } else if (iid == __uuidof(IErrorInfo)) {
      *object = static_cast<IErrorInfo*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP SetGUID(REFGUID guid) override {
    guid_ = guid;
    return S_OK;
  }
  STDMETHODIMP SetSource(LPOLESTR source) override { return Set(source_, source); }
  STDMETHODIMP SetDescription(LPOLESTR text) override { return Set(description_, text); }
  STDMETHODIMP SetHelpFile(LPOLESTR help_file) override { return Set(help_file_, help_file); }
  STDMETHODIMP SetHelpContext(DWORD help_context) override {
    help_context_ = help_context;
    return S_OK;
  }

  STDMETHODIMP GetGUID(GUID* guid) override {
    if (guid == nullptr) return E_INVALIDARG;
    *guid = guid_;
    return S_OK;
  }
  STDMETHODIMP GetSource(BSTR* source) override { return Copy(source_, source); }
  STDMETHODIMP GetDescription(BSTR* description) override {
    return Copy(description_, description);
  }
  STDMETHODIMP GetHelpFile(BSTR* help_file) override { return Copy(help_file_, help_file); }
  STDMETHODIMP GetHelpContext(DWORD* help_context) override {
    if (help_context == nullptr) return E_INVALIDARG;
    *help_context = help_context_;
    return S_OK;
  }

 private:
  ~ErrorInfo() = default;

  static HRESULT Set(Bstr& field, LPCOLESTR text) {
    *field.Put() = SysAllocString(text);
    return text != nullptr && field.Get() == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  static HRESULT Copy(const Bstr& field, BSTR* text) {
    if (text == nullptr) return E_INVALIDARG;
    *text = SysAllocString(field.Get());
    return field.Get() != nullptr && *text == nullptr ? E_OUTOFMEMORY : S_OK;
  }

  std::atomic<ULONG> references_ = 1;
  GUID guid_ = {};
  Bstr source_;
  Bstr description_;
  Bstr help_file_;
  DWORD help_context_ = 0;
};

thread_local ComPtr<IErrorInfo> thread_error_info;

}  // namespace

void DropThreadErrorInfo() { thread_error_info.Reset(); }

HRESULT CreateErrorInfo(ICreateErrorInfo** info) {
  if (info == nullptr) return E_INVALIDARG;
  *info = nullptr;
  return ComBoundary([&] {
    *info = new ErrorInfo;
    return S_OK;
  });
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) {
  if (reserved != 0) return E_INVALIDARG;
  thread_error_info = ComPtr<IErrorInfo>(info);
  return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) {
  if (reserved != 0 || info == nullptr) return E_INVALIDARG;
  *info = thread_error_info.Detach();
  return *info == nullptr ? S_FALSE : S_OK;
}

HRESULT LoadRegTypeLib(REFGUID, WORD, WORD, LCID, ITypeLib** out) {
  if (out == nullptr) return E_INVALIDARG;
  *out = nullptr;
  return TYPE_E_LIBNOTREGISTERED;
}
