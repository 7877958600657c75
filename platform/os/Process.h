// Who this is, in the system's terms.
#pragma once

#include <cstdint>
#include <string>

namespace os {

/// The program's name, for people; empty when the system does not tell.
std::string ProgramName();

/// The number under which the system's own tools show this process.
std::uint64_t ProcessNumber();
/// That of the calling thread. Asking again costs nothing: logs do so for each line.
std::uint64_t ThreadNumber();

}  // namespace os
