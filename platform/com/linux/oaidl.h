// Arrays, error information and type information, named as in the Windows header of the same name.
#pragma once

#include "platform/com/linux/unknwn.h"
#include "platform/com/linux/wtypes.h"

// NOLINTBEGIN(bugprone-reserved-identifier)
#define __IErrorInfo_FWD_DEFINED__
#define __IErrorInfo_INTERFACE_DEFINED__
#define __ICreateErrorInfo_FWD_DEFINED__
#define __ICreateErrorInfo_INTERFACE_DEFINED__
#define __ISupportErrorInfo_FWD_DEFINED__
#define __ISupportErrorInfo_INTERFACE_DEFINED__
// NOLINTEND(bugprone-reserved-identifier)

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

/// An array; use the SafeArray functions rather than the fields. The bounds stand rightmost
/// dimension first, as many as there are dimensions. A client may fill one in by hand; it then has
/// no element type.
struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  PVOID pvData;
  SAFEARRAYBOUND rgsabound[1];
};
// Features: what the elements are. The functions here make arrays with a type mark alone.
inline constexpr USHORT FADF_RECORD = 0x20;
inline constexpr USHORT FADF_HAVEIID = 0x40;
inline constexpr USHORT FADF_HAVEVARTYPE = 0x80;
inline constexpr USHORT FADF_BSTR = 0x100;
inline constexpr USHORT FADF_UNKNOWN = 0x200;
inline constexpr USHORT FADF_DISPATCH = 0x400;
inline constexpr USHORT FADF_VARIANT = 0x800;

struct IErrorInfo : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* help_file) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* help_context) = 0;
};
DEFINE_GUID(IID_IErrorInfo, 0x1CF2B120, 0x547D, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1,
            0x19);
__CRT_UUID_DECL(IErrorInfo, 0x1CF2B120, 0x547D, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1,
                0x19)

struct ICreateErrorInfo : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR source) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR help_file) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD help_context) = 0;
};
DEFINE_GUID(IID_ICreateErrorInfo, 0x22F03340, 0x547D, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B,
            0xD1, 0x19);
__CRT_UUID_DECL(ICreateErrorInfo, 0x22F03340, 0x547D, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B,
                0xD1, 0x19)

struct ISupportErrorInfo : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) = 0;
};
DEFINE_GUID(IID_ISupportErrorInfo, 0xDF0B3D60, 0x548F, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B,
            0xD1, 0x19);
__CRT_UUID_DECL(ISupportErrorInfo, 0xDF0B3D60, 0x548F, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B,
                0xD1, 0x19)

/// Type information is only handed through: nothing here makes or reads any.
struct ITypeInfo : public IUnknown {};

enum TYPEKIND : int;

/// The first slots of a type library, up to the one in use. No such object exists on this system
/// (LoadRegTypeLib).
struct ITypeLib : public IUnknown {
  virtual UINT STDMETHODCALLTYPE GetTypeInfoCount() = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, ITypeInfo** info) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfoType(UINT index, TYPEKIND* kind) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfoOfGuid(REFGUID guid, ITypeInfo** info) = 0;
};
