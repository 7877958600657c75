// Look-ups in the registry's classes, for this folder.
#pragma once

#include <new>
#include <optional>
#include <string>

#include "platform/com/Com.h"

/// The default value of a key below HKEY_CLASSES_ROOT; nothing when there is no such key or value.
std::optional<std::u16string> ClassesValue(const std::u16string& key);

/// Runs the body of a COM function, which no exception leaves.
template <typename Body>
HRESULT ComBoundary(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
std::u16string GuidText(REFGUID guid);
