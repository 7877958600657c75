#include "platform/os/Process.h"

#include <unistd.h>

namespace os {

std::uint64_t ProcessNumber() { return static_cast<std::uint64_t>(getpid()); }

std::uint64_t ThreadNumber() { return static_cast<std::uint64_t>(gettid()); }

}  // namespace os
