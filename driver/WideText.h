// Between the BSTRs of clients and the wide text of the driver.
#pragma once

#include <new>

#include "platform/com/Com.h"
#include "platform/os/Text.h"

namespace driver {

/// The text of a BSTR, which stays the caller's; a null one is empty text.
inline os::WideView ViewOf(BSTR text) { return {text, SysStringLen(text)}; }

/// A new BSTR, the client's to free. Throws std::bad_alloc.
inline BSTR NewBstr(os::WideView text) {
  const BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

}  // namespace driver
