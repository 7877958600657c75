// Identifiers: GUID and what is made of it, named as in the Windows header of the same name.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

// The names are the system's, reserved or not.
// NOLINTBEGIN(bugprone-reserved-identifier)

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};

using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool IsEqualGUID(REFGUID a, REFGUID b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }
inline bool IsEqualIID(REFIID a, REFIID b) { return IsEqualGUID(a, b); }
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) { return IsEqualGUID(a, b); }
inline bool operator==(REFGUID a, REFGUID b) { return IsEqualGUID(a, b); }

/// Defines the constant in every file that sees it; there is no library of identifiers to link.
#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
  inline constexpr GUID name = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}

/// The identifier of an interface or class, for __uuidof.
template <typename T>
struct UuidOf;

#define __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)         \
  extern "C++" {                                                                 \
  template <>                                                                    \
  struct UuidOf<type> {                                                          \
    static constexpr GUID value = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}; \
  };                                                                             \
  }

#define __uuidof(type) \
  (UuidOf<std::remove_cv_t<std::remove_pointer_t<std::decay_t<__typeof__(type)>>>>::value)

inline constexpr GUID GUID_NULL = {};

// NOLINTEND(bugprone-reserved-identifier)
