// Names for the results that a client of the driver meets.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The name of a result: COM's own, the driver's, a VISA status, or an instrument code; a class of
/// code such as "instrument error" for one without a name.
std::string_view HresultName(std::int32_t result);

/// "0x80047060".
std::string HresultText(std::int32_t result);
