#include "server/TypeLibraryRegistration.h"

namespace server {

HRESULT RegisterTypeLibrary(RegistrationScope, const os::WideString&) { return S_OK; }

HRESULT UnregisterTypeLibrary(RegistrationScope) { return S_OK; }

}  // namespace server
