#include "K4NHardWare/Event.h"

#include <new>

namespace uIEvent {

Event* MakeEvent(const void* source, std::string_view name, void* data, std::uint32_t type,
                 std::uint32_t kind) {
  try {
    return new Event(source, name, data, type, kind);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

Event* MakeErrorEvent(const void* source, std::string_view name, void* data) {
  return MakeEvent(source, name, data, 2, 2);
}

Event* MakeWarningEvent(const void* source, std::string_view name, void* data) {
  return MakeEvent(source, name, data, 1, 2);
}

Event* MakeStateEvent(const void* source, std::string_view name, void* data, bool active) {
  return MakeEvent(source, name, data, active ? 3 : 0, 0);
}

Event* MakeNoticeEvent(const void* source, std::string_view name, void* data) {
  return MakeEvent(source, name, data, 0, 1);
}

}  // namespace uIEvent
