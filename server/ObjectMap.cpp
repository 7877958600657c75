#include "server/ObjectMap.h"

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
#include "server/interface/Guids.h"

namespace server {
namespace {

template <typename Class>
ObjectMapEntry EntryOf(const CLSID& class_id, int script, const GUID* category = nullptr) {
  static ClassFactory<Class> factory;
  return {class_id, factory, script, category};
}

}  // namespace

std::span<const ObjectMapEntry> ObjectMap() {
  static const std::array map{
      EntryOf<CZentrelK4NChannel>(__uuidof(ZentrelK4NChannel), 103),
      EntryOf<CZentrelK4NPowerStep>(__uuidof(ZentrelK4NPowerStep), 207),
      EntryOf<CZentrelK4NPulseGeneratorOutput>(__uuidof(ZentrelK4NPulseGeneratorOutput), 209),
      EntryOf<CZentrelK4NTriggerOutput>(__uuidof(ZentrelK4NTriggerOutput), 213),
      EntryOf<CZentrelK4NSyncGenerator>(__uuidof(ZentrelK4NSyncGenerator), 214),
      EntryOf<CZentrelK4NPulseGeneratorDouble>(__uuidof(ZentrelK4NPulseGeneratorDouble), 210),
      EntryOf<CZentrelK4NPulseModulation>(__uuidof(ZentrelK4NPulseModulation), 211),
      EntryOf<CZentrelK4NPulsePacketGenerator>(__uuidof(ZentrelK4NPulsePacketGenerator), 212),
      EntryOf<CZentrelK4NPulseGenerator>(__uuidof(ZentrelK4NPulseGenerator), 208),
      EntryOf<CZentrelK4N>(__uuidof(ZentrelK4N), 102, &kIviCategoryId),
  };
  return map;
}

}  // namespace server
