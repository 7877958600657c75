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
    "Faults: KIND, or KIND:NAME=VALUE,NAME=VALUE with the kinds\n"
    "  refuse (status=)          the request is answered with this status alone\n"
    "  drop                      the connection is closed\n"
    "  silence                   no answer comes\n"
    "  delay (pause=)            the answer comes late\n"
    "  header (word=)            the answer has this header word\n"
    "  pieces (bytes=, pause=)   the body comes in pieces of so many bytes\n"
    "  block-status (status=)    the data block ends in this status\n"
    "  body (bytes=)             the body is so many bytes longer, or shorter (negative)\n"
    "  length (bytes=)           the header announces so many bytes more than there are\n"
    "and, for each: command=1|3|4|6 (recovery, write, read, data), parameter=,\n"
    "after= requests that pass, times= it strikes (0: always). Pauses are in ms.";

}  // namespace simulator
