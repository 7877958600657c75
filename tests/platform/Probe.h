// What the tests know of the probe module.
#pragma once

#include "platform/com/Com.h"

inline constexpr int kProbeAnswer = 4711;

/// {5A0C3D1E-7B42-4E0B-9C55-1F6A2D8E9B70}
inline constexpr CLSID kProbeClass = {
    0x5A0C3D1E, 0x7B42, 0x4E0B, {0x9C, 0x55, 0x1F, 0x6A, 0x2D, 0x8E, 0x9B, 0x70}};
