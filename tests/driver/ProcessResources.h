// What a process holds of its system.
#pragma once

#include <cstddef>

namespace driver_test {

struct ProcessResources {
  std::size_t threads = 0;
  std::size_t handles = 0;   ///< file descriptors, sockets and the system's other objects
  std::size_t memory = 0;    ///< bytes handed out by the heap; 0 where the heap does not tell
  std::size_t resident = 0;  ///< bytes of the process in memory
};
ProcessResources CountResources();

}  // namespace driver_test
