// Which calls are told in which trace.
#pragma once

#include <cstddef>
#include <memory>

#include "visa/Settings.h"
#include "visa/TraceFile.h"
#include "visa/Visa.h"

namespace zevisa {

/// Where calls are told; nowhere without a file. What cannot be traced for want of memory is not.
struct Trace {
  std::shared_ptr<TraceFile> file;
  std::size_t data = Settings{}.trace_data;  ///< bytes of a transfer that a line shows
};

/// The trace of all calls of the process, in the file that ZEVISA_TRACE named when a client last
/// opened a resource manager.
std::shared_ptr<TraceFile> TraceOfProcess();
void FollowEnvironment() noexcept;

/// The trace of a session with these settings: in the process's file, else in the one of its own.
Trace TraceFor(const FoundSettings& settings) noexcept;
/// The trace of the calls with this object; before the call, which may close it.
Trace TraceOf(ViObject object) noexcept;

}  // namespace zevisa
