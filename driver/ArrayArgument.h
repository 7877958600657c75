// Arrays that clients hand over by reference.
#pragma once

#include "platform/com/Com.h"

namespace driver {

/// The client's array; a null reference is as good as no array.
inline SAFEARRAY* ArrayAt(SAFEARRAY** array) { return array == nullptr ? nullptr : *array; }

}  // namespace driver
