// COM and OLE Automation: the system's own headers on Windows, our subset of the same names
// elsewhere.
#pragma once

// IWYU pragma: begin_exports
#include <windows.h>
// After windows.h, which declares what they use.
#include <objbase.h>
#include <ocidl.h>
#include <ole2.h>
#include <oleauto.h>
// IWYU pragma: end_exports
