// Class information, named as in the Windows header of the same name.
#pragma once

#include "platform/com/linux/oaidl.h"

// NOLINTBEGIN(bugprone-reserved-identifier)
#define __IProvideClassInfo_FWD_DEFINED__
#define __IProvideClassInfo_INTERFACE_DEFINED__
#define __IProvideClassInfo2_FWD_DEFINED__
#define __IProvideClassInfo2_INTERFACE_DEFINED__
// NOLINTEND(bugprone-reserved-identifier)

struct IProvideClassInfo : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) = 0;
};
DEFINE_GUID(IID_IProvideClassInfo, 0xB196B283, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34,
            0x1D, 0x07);
__CRT_UUID_DECL(IProvideClassInfo, 0xB196B283, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34,
                0x1D, 0x07)

inline constexpr DWORD GUIDKIND_DEFAULT_SOURCE_DISP_IID = 1;

struct IProvideClassInfo2 : public IProvideClassInfo {
  virtual HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) = 0;
};
DEFINE_GUID(IID_IProvideClassInfo2, 0xA6BC3AC0, 0xDBAA, 0x11CE, 0x9D, 0xE3, 0x00, 0xAA, 0x00, 0x4B,
            0xB8, 0x51);
__CRT_UUID_DECL(IProvideClassInfo2, 0xA6BC3AC0, 0xDBAA, 0x11CE, 0x9D, 0xE3, 0x00, 0xAA, 0x00, 0x4B,
                0xB8, 0x51)
