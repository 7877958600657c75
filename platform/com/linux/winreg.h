// The registry, named as in the Windows header of the same name. It is one file for each user:
// ZENTREL_REGISTRY, or zentrel/registry in the XDG data folder. Key names are case-insensitive,
// values are REG_SZ texts. HKEY_CLASSES_ROOT shows HKEY_CURRENT_USER\Software\Classes over
// HKEY_LOCAL_MACHINE\Software\Classes. Every change is a whole rewrite of the file (a new file
// renamed over the old), one process at a time; a reader sees the state before or after a change.
// Any thread may call.
//
// Besides the codes that Windows gives: ERROR_BADDB when the file is not a registry (it is then
// never overwritten), ERROR_WRITE_FAULT when it cannot be written, ERROR_KEY_DELETED when an open
// key is gone.
#pragma once

#include <cstdint>

#include "platform/com/linux/windows.h"

// NOLINTNEXTLINE(bugprone-reserved-identifier)
struct HKEY__;
using HKEY = HKEY__*;
using LSTATUS = LONG;
using REGSAM = DWORD;

struct SECURITY_ATTRIBUTES;
struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

WINADVAPI const HKEY HKEY_CLASSES_ROOT;
WINADVAPI const HKEY HKEY_CURRENT_USER;
WINADVAPI const HKEY HKEY_LOCAL_MACHINE;

inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

/// Opens a key, or makes it with all its parents. The key class, options, access mask and security
/// are not used.
WINADVAPI LSTATUS RegCreateKeyExW(HKEY parent, LPCWSTR name, DWORD reserved, LPWSTR key_class,
                                  DWORD options, REGSAM access, const SECURITY_ATTRIBUTES* security,
                                  HKEY* key, DWORD* disposition);
WINADVAPI LSTATUS RegOpenKeyExW(HKEY parent, LPCWSTR name, DWORD options, REGSAM access, HKEY* key);
WINADVAPI LSTATUS RegCloseKey(HKEY key);

/// Sets a text; a null or empty name is the key's default value. `size` counts bytes with the
/// closing zero.
WINADVAPI LSTATUS RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type,
                                 const BYTE* data, DWORD size);
/// Reads a text. `size` is the buffer's size in bytes, then the text's with its closing zero.
WINADVAPI LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data,
                                   DWORD* size);
WINADVAPI LSTATUS RegDeleteValueW(HKEY key, LPCWSTR name);

/// The index-th subkey's name. `length` is the buffer's length in characters with the closing zero,
/// then the name's without it.
WINADVAPI LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* length, DWORD* reserved,
                                LPWSTR key_class, DWORD* class_length, FILETIME* last_write);

/// Deletes a key that has no subkeys (ERROR_ACCESS_DENIED otherwise).
WINADVAPI LSTATUS RegDeleteKeyW(HKEY parent, LPCWSTR name);
/// Deletes a key with all that is below it; with a null name, what is in and below `parent`.
WINADVAPI LSTATUS RegDeleteTreeW(HKEY parent, LPCWSTR name);
