// Class factories: how COM makes the module's objects.
#pragma once

#include "K4NHardWare/CallLog.h"
#include "driver/CallFrame.h"
#include "driver/ComObject.h"
#include "driver/ModuleLock.h"
#include "platform/com/Com.h"
#include "server/interface/ZentrelK4NLib.h"

namespace server {

/// The factory of one class; it exists once, as long as the module is loaded. References are not
/// counted: only LockServer and existing objects keep the module loaded.
template <typename Class>
class ClassFactory final : public IClassFactory {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    const bool answered =
        IsEqualGUID(iid, __uuidof(IUnknown)) || IsEqualGUID(iid, __uuidof(IClassFactory));
    *out = answered ? static_cast<IClassFactory*>(this) : nullptr;
    return answered ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return kForever; }
  STDMETHODIMP_(ULONG) Release() override { return kForever; }

  /// With an `outer` object only IUnknown may be requested: CLASS_E_NOAGGREGATION for any other
  /// interface.
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    return driver::Frame({out}, [&]() -> HRESULT {
      *out = nullptr;
      if (outer != nullptr && !IsEqualGUID(iid, __uuidof(IUnknown))) return CLASS_E_NOAGGREGATION;
      call_log::Start(__uuidof(ZentrelK4N));
      IUnknown& object = driver::ComObject<Class>::Create(outer)->Unknown();
      const HRESULT result = object.QueryInterface(iid, out);
      object.Release();
      return result;
    });
  }

  STDMETHODIMP LockServer(BOOL lock) override {
    lock != FALSE ? module_lock::Add() : module_lock::Remove();
    return S_OK;
  }

 private:
  static constexpr ULONG kForever = 1;
};

}  // namespace server
