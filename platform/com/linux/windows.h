// Base types, named and sized as in the Windows header of the same name: LONG has 32 bits and a
// wide character is one UTF-16 unit, whatever the compiler's long and wchar_t are.
#pragma once

#include <cstdint>

#include "platform/com/linux/guiddef.h"
#include "platform/com/linux/winerror.h"

using BOOL = int;
using BYTE = std::uint8_t;
using DWORD = std::uint32_t;
using INT = int;
using LONG = std::int32_t;
using LPVOID = void*;
using PVOID = void*;
using UINT = unsigned int;
using ULONG = std::uint32_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;

using WCHAR = char16_t;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;

using LCID = DWORD;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

// There is one calling convention, and interfaces are plain abstract structures.
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define WINAPI
#define EXTERN_C extern "C"
#define STDMETHODIMP HRESULT STDMETHODCALLTYPE
#define STDMETHODIMP_(type) type STDMETHODCALLTYPE
#define STDAPI EXTERN_C HRESULT STDAPICALLTYPE
#define STDAPI_(type) EXTERN_C type STDAPICALLTYPE

// Functions of the system, which here live in the one COM library of the process.
#define WINOLEAPI EXTERN_C __attribute__((visibility("default"))) HRESULT
#define WINOLEAPI_(type) EXTERN_C __attribute__((visibility("default"))) type
#define WINOLEAUTAPI WINOLEAPI
#define WINOLEAUTAPI_(type) WINOLEAPI_(type)
#define WINADVAPI EXTERN_C __attribute__((visibility("default")))

// What generated interface headers are written with.
#define interface struct
#define MIDL_INTERFACE(uuid) struct
#define DECLSPEC_UUID(uuid)
#define BEGIN_INTERFACE
#define END_INTERFACE

#include "platform/com/linux/winreg.h"
