// A look at the driver's error trail for our own tools. It is not in the type library and no
// client's business: it may change, under a new identifier, or go with any version of the driver.
#pragma once

#include <cstdint>

#include "platform/com/Com.h"

/// An interface of the root object, reached by query, in the object's own process and apartment.
MIDL_INTERFACE("D7A1AF86-F9D1-4D64-9DBA-85C76D08DB65")
IErrorTrail : public IUnknown {
 public:
  /// A run of equal failures: their status, where in the driver they were noticed (a new text, the
  /// caller's to free), and how many records ErrorQuery has of them. Number 0 is the oldest run.
  /// Removes nothing, and needs no session. S_FALSE behind the newest run: nothing is written.
  virtual HRESULT STDMETHODCALLTYPE GetRun(ULONG number, LONG* status, BSTR* location,
                                           std::uint64_t* count) = 0;
};

__CRT_UUID_DECL(IErrorTrail, 0xd7a1af86, 0xf9d1, 0x4d64, 0x9d, 0xba, 0x85, 0xc7, 0x6d, 0x08, 0xdb,
                0x65)
