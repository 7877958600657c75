// Registration of the module's type library. There is none elsewhere than on Windows: both do
// nothing there.
#pragma once

#include "platform/com/Com.h"
#include "server/Registrar.h"

/// Registers the type library that the module carries. The key of an interface of other makers that
/// it describes too stays as it was when theirs stood there.
HRESULT RegisterTypeLibrary(RegistrationScope scope, const os::WideString& module_file);

/// Takes the registration away, and leaves other makers' interface keys as they were. S_OK when the
/// library is not registered.
HRESULT UnregisterTypeLibrary(RegistrationScope scope);
