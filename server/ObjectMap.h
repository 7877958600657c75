// The object map: every class of the type library, what makes its objects and what registers it.
#pragma once

#include <span>

#include "platform/com/Com.h"

namespace server {

struct ObjectMapEntry {
  const CLSID& class_id;
  IClassFactory& factory;
  int script;            ///< number of its registration script, a resource
  const GUID* category;  ///< component category that the class implements; null for none
};

/// The children can be created on their own, too, but have nothing to act on then. Registered in
/// this order, the root last.
std::span<const ObjectMapEntry> ObjectMap();

}  // namespace server
