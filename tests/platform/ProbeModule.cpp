// A module with one class, whose objects know nothing but IUnknown.
#include <atomic>
#include <filesystem>

#include "platform/com/Com.h"
#include "platform/os/Module.h"
#include "tests/platform/Probe.h"

#ifdef _WIN32
#define PROBE_EXPORT extern "C" __declspec(dllexport)
#else
#define PROBE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

std::atomic<ULONG> living_objects = 0;

class Object final : public IUnknown {
 public:
  Object() { ++living_objects; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == __uuidof(IUnknown) ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  ~Object() { --living_objects; }

  std::atomic<ULONG> references_ = 1;
};

/// Lives as long as the module, and is not counted.
class Factory final : public IClassFactory {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == __uuidof(IClassFactory) || iid == __uuidof(IUnknown) ? this : nullptr;
    return *object == nullptr ? E_NOINTERFACE : S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    auto* const made = new Object;
    const HRESULT result = made->QueryInterface(iid, object);
    made->Release();
    return result;
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

}  // namespace

PROBE_EXPORT int ProbeAnswer() { return kProbeAnswer; }

PROBE_EXPORT const std::filesystem::path::value_type* ProbeFolder() {
  static const std::filesystem::path folder = os::ThisModuleFolder();
  return folder.c_str();
}

PROBE_EXPORT HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  static Factory factory;
  *object = nullptr;
  return clsid == kProbeClass ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

PROBE_EXPORT HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return living_objects == 0 ? S_OK : S_FALSE;
}
