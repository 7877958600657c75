// Clients give times in seconds; the manager keeps them in nanoseconds, the trigger output's width
// in microseconds.
#pragma once

namespace k4n {

inline constexpr double kNanosecondsPerSecond = 1e9;
inline constexpr double kMicrosecondsPerSecond = 1e6;

}  // namespace k4n
