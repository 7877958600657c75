// Automation types, named as in the Windows header of the same name.
#pragma once

#include "platform/com/linux/windows.h"

using OLECHAR = WCHAR;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
#define OLESTR(text) u##text

/// Wide text with its length in bytes (32 bits) in front of the first character and a zero behind
/// the last. Null is empty text.
using BSTR = OLECHAR*;

using VARIANT_BOOL = std::int16_t;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

/// The element types that arrays can have here.
using VARTYPE = std::uint16_t;
enum VARENUM : VARTYPE {
  VT_EMPTY = 0,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_BOOL = 11,
  VT_UI1 = 17
};

enum CLSCTX : DWORD { CLSCTX_INPROC_SERVER = 1, CLSCTX_LOCAL_SERVER = 4, CLSCTX_ALL = 23 };
