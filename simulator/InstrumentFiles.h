// What the instrument tells of itself: identity text, files, serial number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "simulator/Options.h"
#include "simulator/Wire.h"

namespace simulator {

/// 100 bytes of Windows-1251: the three dates after their names, filled up with zeros.
Bytes IdentityText(const Options& options);

/// Reads a file by its path. The request's body: 16-bit parameter, 32-bit offset, 32-bit most
/// bytes, then the path with a zero at its end. The answer repeats all that before the content.
std::int16_t ReadFile(const Options& options, const Message& request, Bytes& answer);

/// Answers the serial number with each character multiplied by the inverse of the request's key
/// modulo 65537, and its CRC-16 (polynomial 0xA001, reflected, initial value 0) in clear.
std::int16_t ScrambledSerialNumber(const Options& options, const Message& request, Bytes& answer);

}  // namespace simulator
