// The heap of the program: what it holds, and one that gives nothing.
#pragma once

/// How many objects that were made with `new` have not been deleted.
long LiveAllocations();

/// While it lives, `new` of any thread throws.
class Shortage {
 public:
  Shortage();
  ~Shortage();
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;
};
