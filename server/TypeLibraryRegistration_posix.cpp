#include "server/TypeLibraryRegistration.h"

HRESULT RegisterTypeLibrary(RegistrationScope, const os::WideString&) { return S_OK; }

HRESULT UnregisterTypeLibrary(RegistrationScope) { return S_OK; }
