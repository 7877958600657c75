// Threads in COM, and class factories out of registered modules.
#include <dlfcn.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/com/ClassKeys.h"
#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "platform/com/ThreadErrorInfo.h"
#include "platform/os/Text.h"

namespace {

using GetClassObjectFunction = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
using CanUnloadFunction = HRESULT STDAPICALLTYPE();

struct LoadedModule {
  std::string path;
  void* handle;
};

/// What the threads of the process share.
struct Process {
  std::mutex mutex;
  int joins = 0;                      // successful CoInitializeEx calls not undone yet
  int multithreaded_joins = 0;        // those that let every thread of the process in
  std::vector<LoadedModule> modules;  // each path once
};

// Never destroyed: objects of the modules may be released by other destructors.
Process& TheProcess() {
  static Process& process = *new Process;
  return process;
}

struct Membership {
  int joins = 0;
  DWORD mode = COINIT_MULTITHREADED;
};
thread_local Membership membership;

/// Modules that have living objects, or do not say, stay.
void UnloadUnused(std::vector<LoadedModule>& modules) {
  std::erase_if(modules, [](const LoadedModule& module) {
    auto* const can_unload =
        reinterpret_cast<CanUnloadFunction*>(dlsym(module.handle, "DllCanUnloadNow"));
    return can_unload != nullptr && can_unload() == S_OK && dlclose(module.handle) == 0;
  });
}

/// The handle of a module, loaded if it is not yet; null when it cannot be. The lock is held by the
/// caller.
void* HandleOf(Process& process, const std::string& path) {
  for (const LoadedModule& module : process.modules) {
    if (module.path == path) return module.handle;
  }
  void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle != nullptr) process.modules.push_back({path, handle});
  return handle;
}

bool InCom(const Process& process) {
  return membership.joins > 0 || process.multithreaded_joins > 0;
}

HRESULT ClassObject(REFCLSID clsid, DWORD context, REFIID iid, LPVOID* object) {
  Process& process = TheProcess();
  GetClassObjectFunction* get_class_object = nullptr;
  {
    const std::lock_guard lock(process.mutex);
    if (!InCom(process)) return CO_E_NOTINITIALIZED;
    if ((context & CLSCTX_INPROC_SERVER) == 0) return REGDB_E_CLASSNOTREG;
    const auto path = ClassesValue(u"CLSID\\" + GuidText(clsid) + u"\\InprocServer32");
    if (!path || path->empty()) return REGDB_E_CLASSNOTREG;
    void* const handle = HandleOf(process, os::ToNarrow(*path, os::kUtf8CodePage));
    if (handle == nullptr) return CO_E_DLLNOTFOUND;
    get_class_object =
        reinterpret_cast<GetClassObjectFunction*>(dlsym(handle, "DllGetClassObject"));
  }
  return get_class_object == nullptr ? CO_E_ERRORINDLL : get_class_object(clsid, iid, object);
}

}  // namespace

HRESULT CoInitializeEx(LPVOID, DWORD mode) {
  mode &= COINIT_APARTMENTTHREADED;
  if (membership.joins > 0 && membership.mode != mode) return RPC_E_CHANGED_MODE;
  Process& process = TheProcess();
  const std::lock_guard lock(process.mutex);
  ++process.joins;
  if (mode == COINIT_MULTITHREADED) ++process.multithreaded_joins;
  membership.mode = mode;
  return membership.joins++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
  if (membership.joins == 0) return;
  if (--membership.joins == 0) DropThreadErrorInfo();
  Process& process = TheProcess();
  std::unique_lock lock(process.mutex);
  if (membership.mode == COINIT_MULTITHREADED) --process.multithreaded_joins;
  if (--process.joins != 0) return;
  std::vector<LoadedModule> modules = std::exchange(process.modules, {});
  // A module that goes may call COM once more.
  lock.unlock();
  UnloadUnused(modules);
  lock.lock();
  process.modules.insert(process.modules.end(), modules.begin(), modules.end());
}

HRESULT CoGetClassObject(REFCLSID clsid, DWORD context, LPVOID, REFIID iid, LPVOID* object) {
  if (object == nullptr) return E_INVALIDARG;
  *object = nullptr;
  return ComBoundary([&] { return ClassObject(clsid, context, iid, object); });
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                         LPVOID* object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  ComPtr<IClassFactory> factory;
  const HRESULT result =
      CoGetClassObject(clsid, context, nullptr, __uuidof(IClassFactory), factory.PutVoid());
  return FAILED(result) ? result : factory->CreateInstance(outer, iid, object);
}
