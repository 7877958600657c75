#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/driver/ProcessResources.h"

namespace driver_test {
namespace {

std::size_t EntryCount(const char* folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

std::size_t ResidentBytes() {
  std::size_t total = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;  // pages
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

// The sanitizers' heaps report 0 here; leaks are theirs to find.
ProcessResources CountResources() {
  return {.threads = EntryCount("/proc/self/task"),
          .handles = EntryCount("/proc/self/fd"),
          .memory = mallinfo2().uordblks + mallinfo2().hblkhd,
          .resident = ResidentBytes()};
}

}  // namespace driver_test
