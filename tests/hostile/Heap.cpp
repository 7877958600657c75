#include "tests/hostile/Heap.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> live = 0;
std::atomic<bool> is_short = false;
}  // namespace

long LiveAllocations() { return live; }

Shortage::Shortage() { is_short = true; }
Shortage::~Shortage() { is_short = false; }

void* operator new(std::size_t size) {
  void* const memory = is_short ? nullptr : std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  ++live;
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) --live;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
