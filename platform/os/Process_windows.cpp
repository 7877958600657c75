#include <windows.h>

#include "platform/os/Process.h"

namespace os {

std::uint64_t ProcessNumber() { return GetCurrentProcessId(); }

std::uint64_t ThreadNumber() { return GetCurrentThreadId(); }

}  // namespace os
