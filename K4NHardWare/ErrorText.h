// The link layer's own texts for statuses.
#pragma once

#include <string>

#include "status/Status.h"

namespace k4n {

/// The text of a status, looked up by its low 16 bits; "Unknown error: %d(%X)" with those bits when
/// there is none.
std::string ErrorText(Status code);

}  // namespace k4n
