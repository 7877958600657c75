// The count that keeps the module loaded: existing objects and locked class factories.
#pragma once

namespace module_lock {

void Add();
void Remove();
/// True while the module must not be unloaded.
bool IsHeld();

}  // namespace module_lock
