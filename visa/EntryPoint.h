// What the entry points share: each finds its object and hands over; no exception leaves.
#pragma once

#include <cstring>
#include <new>
#include <string>

#include "visa/Objects.h"
#include "visa/Visa.h"

namespace zevisa {

template <typename Body>
ViStatus Guarded(const Body& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return VI_ERROR_ALLOC;
  } catch (...) {
    return VI_ERROR_SYSTEM_ERROR;
  }
}

template <typename Body>
ViStatus WithSession(ViSession number, const Body& body) noexcept {
  return Guarded([&] {
    const auto session = Objects::Instance().FindSession(number);
    return session ? body(*session) : VI_ERROR_INV_OBJECT;
  });
}

/// Stores a result that the client may have no use for.
template <typename Value>
void Give(Value* place, Value value) {
  if (place != nullptr) *place = value;
}

inline void GiveText(char* place, const std::string& text) {
  if (place != nullptr) std::memcpy(place, text.c_str(), text.size() + 1);
}

}  // namespace zevisa
