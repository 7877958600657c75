// The call log: the driver's log file for who asks for it, one for the whole module. Off, it costs
// a test of one flag where an interface is handed out and where a failure is recorded.
#pragma once

#include <atomic>
#include <string_view>

#include "platform/com/Com.h"

namespace call_log {

/// Opens the log when somebody asks for one: by the environment variable ZENTREL_LOG, or by the
/// text "CallLog" of the key that the class is registered by (the environment prevails); nothing
/// without either. The text is the log's name, see DriverLog; an asterisk in it is replaced by the
/// number of the process. Only the first call decides, and others wait for it; one from within it,
/// out of the warning box that says that there is no log, goes on without. With a log the module
/// stays in the process until that ends.
void Start(const CLSID& class_id) noexcept;

namespace internal {
extern constinit std::atomic<bool> is_on;
}

/// Whether there is a log. Any thread.
inline bool IsOn() noexcept { return internal::is_on.load(std::memory_order_acquire); }

/// Adds a line with date, time and thread number. Any thread; lines stay whole. A line that cannot
/// be written is lost, as is every line when there is no log.
void Write(std::string_view line) noexcept;

}  // namespace call_log
