// Functions for texts, arrays and error information, named as in the Windows header of the same
// name.
#pragma once

#include "platform/com/linux/oaidl.h"

// --- Texts. Every allocating function gives null when there is no memory.
WINOLEAUTAPI_(BSTR) SysAllocString(const OLECHAR* text);
/// A null `text` gives zeros.
WINOLEAUTAPI_(BSTR) SysAllocStringLen(const OLECHAR* text, UINT length);
WINOLEAUTAPI_(BSTR) SysAllocStringByteLen(const char* bytes, UINT length);
WINOLEAUTAPI_(void) SysFreeString(BSTR text);
/// Characters without the closing zero; 0 for null.
WINOLEAUTAPI_(UINT) SysStringLen(BSTR text);
WINOLEAUTAPI_(UINT) SysStringByteLen(BSTR text);

// Arrays. A null array or out pointer gives E_INVALIDARG, a dimension that the array has not
// DISP_E_BADINDEX.
/// An array of zeros; null for an element type not listed in VARENUM, no dimensions, or no memory.
WINOLEAUTAPI_(SAFEARRAY*) SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
WINOLEAUTAPI_(SAFEARRAY*) SafeArrayCreateVector(VARTYPE type, LONG lower_bound, ULONG elements);
/// Frees the array; DISP_E_ARRAYISLOCKED while it is locked.
WINOLEAUTAPI SafeArrayDestroy(SAFEARRAY* array);
WINOLEAUTAPI_(UINT) SafeArrayGetDim(SAFEARRAY* array);
WINOLEAUTAPI SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
WINOLEAUTAPI SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
/// E_INVALIDARG for an array without a type mark.
WINOLEAUTAPI SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
WINOLEAUTAPI SafeArrayLock(SAFEARRAY* array);
/// E_UNEXPECTED when the array is not locked.
WINOLEAUTAPI SafeArrayUnlock(SAFEARRAY* array);
/// Locks the array and gives its elements.
WINOLEAUTAPI SafeArrayAccessData(SAFEARRAY* array, void** data);
WINOLEAUTAPI SafeArrayUnaccessData(SAFEARRAY* array);

// --- Error information, one object for each thread
WINOLEAUTAPI CreateErrorInfo(ICreateErrorInfo** info);
/// Replaces the thread's object (null: removes it), taking a reference of its own.
WINOLEAUTAPI SetErrorInfo(ULONG reserved, IErrorInfo* info);
/// Hands the thread's object over, which then has none; S_FALSE and null when there is none.
WINOLEAUTAPI GetErrorInfo(ULONG reserved, IErrorInfo** info);

/// There are no type libraries on this system: always TYPE_E_LIBNOTREGISTERED.
WINOLEAUTAPI LoadRegTypeLib(REFGUID library, WORD major, WORD minor, LCID locale, ITypeLib** out);
