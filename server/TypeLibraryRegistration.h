// Registration of the module's type library. On Linux there is none: both functions do nothing.
#pragma once

#include "platform/com/Com.h"
#include "server/Registrar.h"

namespace server {

/// Registers the type library in the module's resources. It also describes an interface that other
/// makers register: if their key exists, for 32-bit or 64-bit programs, it stays unchanged, and a
/// registration for the user hides none of the machine's.
HRESULT RegisterTypeLibrary(RegistrationScope scope, const os::WideString& module_file);

/// Removes the registration: the library's own languages and system kind. The rest of the version,
/// with the keys of its interfaces, is removed unless others have registered that version, too.
/// Other makers' interface keys stay unchanged. S_OK if the library is not registered.
HRESULT UnregisterTypeLibrary(RegistrationScope scope);

}  // namespace server
