// The entry points of the COM server module.
#include <array>

#include "driver/Channel.h"
#include "driver/PowerStep.h"
#include "driver/PulseGenerator.h"
#include "driver/PulseGeneratorDouble.h"
#include "driver/PulseGeneratorOutput.h"
#include "driver/PulseModulation.h"
#include "driver/PulsePacketGenerator.h"
#include "driver/SyncGenerator.h"
#include "driver/TriggerOutput.h"
#include "driver/ZentrelK4N.h"
#include "server/ClassFactory.h"
#include "server/Exports.h"

namespace {

struct ObjectMapEntry {
  const CLSID& class_id;
  IClassFactory& factory;
};

template <typename Class>
ObjectMapEntry EntryOf(const CLSID& class_id) {
  static ClassFactory<Class> factory;
  return {class_id, factory};
}

/// Every class of the type library; the children can be created on their own, too, but have nothing
/// to act on then.
const auto& ObjectMap() {
  static const std::array map{
      EntryOf<CZentrelK4NChannel>(__uuidof(ZentrelK4NChannel)),
      EntryOf<CZentrelK4NPowerStep>(__uuidof(ZentrelK4NPowerStep)),
      EntryOf<CZentrelK4NPulseGeneratorOutput>(__uuidof(ZentrelK4NPulseGeneratorOutput)),
      EntryOf<CZentrelK4NTriggerOutput>(__uuidof(ZentrelK4NTriggerOutput)),
      EntryOf<CZentrelK4NSyncGenerator>(__uuidof(ZentrelK4NSyncGenerator)),
      EntryOf<CZentrelK4NPulseGeneratorDouble>(__uuidof(ZentrelK4NPulseGeneratorDouble)),
      EntryOf<CZentrelK4NPulseModulation>(__uuidof(ZentrelK4NPulseModulation)),
      EntryOf<CZentrelK4NPulsePacketGenerator>(__uuidof(ZentrelK4NPulsePacketGenerator)),
      EntryOf<CZentrelK4NPulseGenerator>(__uuidof(ZentrelK4NPulseGenerator)),
      EntryOf<CZentrelK4N>(__uuidof(ZentrelK4N)),
  };
  return map;
}

}  // namespace

STDAPI DllCanUnloadNow() ZK_EXPORT;
STDAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** out) ZK_EXPORT;

STDAPI DllCanUnloadNow() { return module_lock::IsHeld() ? S_FALSE : S_OK; }

STDAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** out) {
  return driver::Frame({out}, [&]() -> HRESULT {
    *out = nullptr;
    for (const auto& entry : ObjectMap()) {
      if (IsEqualGUID(entry.class_id, class_id)) {
        return entry.factory.QueryInterface(iid, out);
      }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
  });
}
