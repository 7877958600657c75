// The entry points through which COM gets the module's objects.
#include "driver/CallFrame.h"
#include "driver/ModuleLock.h"
#include "server/ObjectMap.h"

using namespace server;

STDAPI DllCanUnloadNow() { return module_lock::IsHeld() ? S_FALSE : S_OK; }

STDAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** out) {
  return driver::Frame({out}, [&]() -> HRESULT {
    *out = nullptr;
    for (const ObjectMapEntry& entry : ObjectMap()) {
      if (IsEqualGUID(entry.class_id, class_id)) return entry.factory.QueryInterface(iid, out);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
  });
}
