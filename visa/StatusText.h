// What a status means, for people.
#pragma once

#include <string_view>

#include "visa/Visa.h"

namespace zevisa {

/// "symbol: meaning", shorter than 256 bytes and ended by a zero; empty for a status that VISA does
/// not know.
std::string_view StatusText(ViStatus status);

}  // namespace zevisa
