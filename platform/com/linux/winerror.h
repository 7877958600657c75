// Result codes of COM and of the registry, named as in the Windows header of the same name.
#pragma once

#include <cstdint>

using HRESULT = std::int32_t;

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

constexpr HRESULT HresultFromBits(std::uint32_t bits) { return static_cast<HRESULT>(bits); }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = HresultFromBits(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = HresultFromBits(0x80004002);
inline constexpr HRESULT E_POINTER = HresultFromBits(0x80004003);
inline constexpr HRESULT E_FAIL = HresultFromBits(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = HresultFromBits(0x8000FFFF);
inline constexpr HRESULT E_ACCESSDENIED = HresultFromBits(0x80070005);
inline constexpr HRESULT E_OUTOFMEMORY = HresultFromBits(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = HresultFromBits(0x80070057);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = HresultFromBits(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = HresultFromBits(0x80040111);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = HresultFromBits(0x80040154);
inline constexpr HRESULT CO_E_NOTINITIALIZED = HresultFromBits(0x800401F0);
inline constexpr HRESULT CO_E_CLASSSTRING = HresultFromBits(0x800401F3);
inline constexpr HRESULT CO_E_IIDSTRING = HresultFromBits(0x800401F4);
inline constexpr HRESULT CO_E_DLLNOTFOUND = HresultFromBits(0x800401F8);
inline constexpr HRESULT CO_E_ERRORINDLL = HresultFromBits(0x800401F9);
inline constexpr HRESULT RPC_E_CHANGED_MODE = HresultFromBits(0x80010106);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = HresultFromBits(0x80020005);
inline constexpr HRESULT DISP_E_BADINDEX = HresultFromBits(0x8002000B);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = HresultFromBits(0x8002000D);
inline constexpr HRESULT TYPE_E_LIBNOTREGISTERED = HresultFromBits(0x8002801D);

inline constexpr std::int32_t ERROR_SUCCESS = 0;
inline constexpr std::int32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr std::int32_t ERROR_ACCESS_DENIED = 5;
inline constexpr std::int32_t ERROR_INVALID_HANDLE = 6;
inline constexpr std::int32_t ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr std::int32_t ERROR_WRITE_FAULT = 29;
inline constexpr std::int32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr std::int32_t ERROR_MORE_DATA = 234;
inline constexpr std::int32_t ERROR_NO_MORE_ITEMS = 259;
inline constexpr std::int32_t ERROR_BADDB = 1009;
inline constexpr std::int32_t ERROR_KEY_DELETED = 1018;

/// A code of the registry as an HRESULT.
constexpr HRESULT HRESULT_FROM_WIN32(std::int32_t code) {
  return code <= 0 ? code
                   : HresultFromBits((static_cast<std::uint32_t>(code) & 0xFFFF) | 0x80070000);
}
