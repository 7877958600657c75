// Who this is, in the system's numbers.
#pragma once

#include <cstdint>
#include <string>

namespace zevisa {

/// The program's name, for people; empty when the system does not tell.
std::string ProgramName();

struct Caller {
  std::uint64_t process;
  std::uint64_t thread;
};
/// The calling thread.
Caller WhoCalls();

}  // namespace zevisa
