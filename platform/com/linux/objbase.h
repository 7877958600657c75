// Objects by class, named as in the Windows header of the same name. Classes are found in the
// registry (winreg.h): the default value of CLSID\{...}\InprocServer32 is the full path of the
// module.
#pragma once

#include <cstddef>

#include "platform/com/linux/unknwn.h"
#include "platform/com/linux/wtypes.h"

enum COINIT : DWORD { COINIT_MULTITHREADED = 0, COINIT_APARTMENTTHREADED = 2 };

/// Joins the thread to COM. S_FALSE when it has joined already, RPC_E_CHANGED_MODE when in the
/// other mode (then not counted). Every success is undone by one CoUninitialize; the last one of
/// the process unloads the modules that CoGetClassObject loaded and that say that they can go.
WINOLEAPI CoInitializeEx(LPVOID reserved, DWORD mode);
WINOLEAPI_(void) CoUninitialize();

WINOLEAPI_(LPVOID) CoTaskMemAlloc(std::size_t size);
WINOLEAPI_(void) CoTaskMemFree(LPVOID memory);

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" and its zero: 39 characters; 0, and nothing written,
/// when `capacity` is less.
WINOLEAPI_(int) StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity);
/// Also takes a ProgID. CO_E_CLASSSTRING for any other text; null gives the null identifier.
WINOLEAPI CLSIDFromString(LPCOLESTR text, CLSID* clsid);
/// E_INVALIDARG for a text of the wrong length, CO_E_IIDSTRING for one that is no identifier.
WINOLEAPI IIDFromString(LPCOLESTR text, IID* iid);
/// CO_E_CLASSSTRING when the registry does not have it.
WINOLEAPI CLSIDFromProgID(LPCOLESTR prog_id, CLSID* clsid);
/// REGDB_E_CLASSNOTREG when the registry does not have it. The text is freed with CoTaskMemFree.
WINOLEAPI ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* prog_id);

/// The class factory of a registered class. Only servers in modules are known
/// (CLSCTX_INPROC_SERVER). CO_E_NOTINITIALIZED while no thread has joined COM; REGDB_E_CLASSNOTREG;
/// CO_E_DLLNOTFOUND when the module cannot be loaded; CO_E_ERRORINDLL when it is no COM module.
WINOLEAPI CoGetClassObject(REFCLSID clsid, DWORD context, LPVOID server, REFIID iid,
                           LPVOID* object);
WINOLEAPI CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                           LPVOID* object);
