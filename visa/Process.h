// Who this is, in the system's numbers.
#pragma once

#include <cstdint>
#include <string>

namespace zevisa {

/// The program's name, for people; empty when the system does not tell.
std::string ProgramName();
std::uint64_t ProcessNumber();
/// Of the calling thread.
std::uint64_t ThreadNumber();

}  // namespace zevisa
