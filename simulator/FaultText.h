// Faults as a person writes them.
#pragma once

#include <string_view>

#include "simulator/Faults.h"

namespace simulator {

/// One fault from "KIND" or "KIND:NAME=VALUE,NAME=VALUE": "refuse:parameter=79,status=0x8003",
/// "drop:after=10". kFaultTextHelp lists kinds and names; numbers are decimal or 0x hexadecimal.
/// Throws std::invalid_argument, its text one line, for anything else.
Fault ParseFault(std::string_view text);

/// How to write one, for a command's help.
inline constexpr std::string_view kFaultTextHelp =
    "KIND:NAME=VALUE,... with the kinds refuse (status=), drop, silence, delay (pause=), "
    "header (word=), pieces (bytes=, pause=), block-status (status=), body (bytes= more or less), "
    "length (bytes= more or less announced) and, for each, command=1|3|4|6, parameter=, "
    "after= requests, times= (0: always); pauses in ms";

}  // namespace simulator
