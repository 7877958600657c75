// Registration of the module's type library. There is none elsewhere than on Windows: both do
// nothing there.
#pragma once

#include "platform/com/Com.h"
#include "server/Registrar.h"

/// Registers the type library that the module carries. It describes an interface of other makers,
/// too: where their key stands, for programs of either width, it stays as it was, and a user's
/// registration hides none of the machine's.
HRESULT RegisterTypeLibrary(RegistrationScope scope, const os::WideString& module_file);

/// Takes the registration away: its own languages and system kind, and the rest of the version with
/// the keys of its interfaces unless others have registered that version, too. Other makers'
/// interface keys stay as they were. S_OK when the library is not registered.
HRESULT UnregisterTypeLibrary(RegistrationScope scope);
