#include <windows.h>
// After windows.h.
#include <psapi.h>
#include <tlhelp32.h>

#include "tests/driver/ProcessResources.h"

namespace driver_test {
namespace {

std::size_t ThreadCount() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  std::size_t count = 0;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  CloseHandle(snapshot);
  return count;
}

std::size_t HeapBytes() {
  const HANDLE heap = GetProcessHeap();
  std::size_t bytes = 0;
  HeapLock(heap);
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry)) {
    if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
  }
  HeapUnlock(heap);
  return bytes;
}

}  // namespace

ProcessResources CountResources() {
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
  return {.threads = ThreadCount(),
          .handles = handles,
          .memory = HeapBytes(),
          .resident = memory.WorkingSetSize};
}

}  // namespace driver_test
