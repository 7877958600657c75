// The identities of what is registered with the driver and not in its type library; fixed for ever.
// All others are in the generated header: LIBID_ZentrelK4NLib, __uuidof(IZentrelK4N),
// __uuidof(ZentrelK4N).
#pragma once

#include "platform/com/Com.h"
#include "server/interface/ZentrelK4NLib.h"

/// The application that the server module is registered as.
inline constexpr GUID kApplicationId = {
    0x8774b5ea, 0x41db, 0x4c5b, {0xa0, 0x67, 0xfa, 0x67, 0xdb, 0x88, 0xb9, 0x85}};
/// The IVI Foundation's component category that the root class implements.
inline constexpr GUID kIviCategoryId = {
    0x47ed5152, 0xa398, 0x11d4, {0xba, 0x58, 0x00, 0x00, 0x64, 0x65, 0x73, 0x74}};
