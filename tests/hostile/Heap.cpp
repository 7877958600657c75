#include "tests/hostile/Heap.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> live = 0;
std::atomic<std::size_t> least_refused = SIZE_MAX;
std::atomic<std::size_t> most_refused = 0;
}  // namespace

long LiveAllocations() { return live; }

Shortage::Shortage(std::size_t least, std::size_t most) {
  most_refused = most;
  least_refused = least;
}
Shortage::~Shortage() { least_refused = SIZE_MAX; }

void* operator new(std::size_t size) {
  const bool is_refused = size >= least_refused && size <= most_refused;
  void* const memory = is_refused ? nullptr : std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  ++live;
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) --live;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
