// The heap of the program: what it holds, and one that gives nothing.
#pragma once

#include <cstddef>
#include <cstdint>

/// How many objects that were made with `new` have not been deleted.
long LiveAllocations();

/// While it lives, `new` of any thread throws for sizes from `least` to `most`.
class Shortage {
 public:
  explicit Shortage(std::size_t least = 0, std::size_t most = SIZE_MAX);
  ~Shortage();
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;
};
