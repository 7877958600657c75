// The numbers under which the system's own tools show this process and its threads.
#pragma once

#include <cstdint>

namespace os {

std::uint64_t ProcessNumber();
/// Of the calling thread.
std::uint64_t ThreadNumber();

}  // namespace os
