#include "K4NHardWare/CallLog.h"

#include <mutex>
#include <string>

#include "K4NHardWare/DriverLog.h"
#include "platform/com/RegKey.h"
#include "platform/os/Files.h"
#include "platform/os/Module.h"
#include "platform/os/Process.h"

namespace call_log {

constinit std::atomic<bool> internal::is_on = false;

namespace {

// Threads may still write while the process ends (not on Windows, where they are gone by then):
// what they use has no destructor.
std::mutex write_mutex;
constinit DriverLog* log = nullptr;

/// Writes the log's last line when the process ends. A thread that ended within a write has left
/// the lock behind; the log then stays as it is.
struct AtEnd {
  ~AtEnd() {
    const std::unique_lock lock(write_mutex, std::try_to_lock);
    if (!lock.owns_lock()) return;
    internal::is_on = false;
    delete log;
    log = nullptr;
  }
};
const AtEnd at_end;

/// Empty when nobody asks for a log.
std::string Name(const CLSID& class_id) {
  os::WideString name = os::WideOf(os::PathFromEnvironment("ZENTREL_LOG"));
  if (name.empty()) {
    name = RegistryText(HKEY_CLASSES_ROOT, OLESTR("CLSID\\") + RegistryName(class_id),
                        OLESTR("CallLog"));
  }
  std::string narrow = os::ToNarrow(name, os::kCyrillicCodePage);
  if (const auto place = narrow.find('*'); place != std::string::npos) {
    narrow.replace(place, 1, std::to_string(os::ProcessNumber()));
  }
  return narrow;
}

// Who unloads the driver and loads it again must not find the log truncated: the module stays.
void Open(const std::string& name) {
  auto* const opened = new DriverLog(name);
  if (!opened->IsOpen()) {
    delete opened;
    return;
  }
  os::KeepThisModule();
  log = opened;
  internal::is_on.store(true, std::memory_order_release);
}

}  // namespace

void Start(const CLSID& class_id) noexcept {
  static constinit std::atomic<bool> is_decided = false;
  static std::recursive_mutex mutex;
  static constinit bool has_begun = false;
  if (is_decided.load(std::memory_order_acquire)) return;
  const std::lock_guard lock(mutex);
  if (has_begun) return;
  has_begun = true;
  try {
    if (const std::string name = Name(class_id); !name.empty()) Open(name);
  } catch (...) {  // without memory there is no log
  }
  is_decided.store(true, std::memory_order_release);
}

void Write(std::string_view line) noexcept {
  try {
    const std::string entry = std::to_string(os::ThreadNumber()).append(" ").append(line);
    const std::lock_guard lock(write_mutex);
    if (log != nullptr) log->DatedLine(entry.c_str());
  } catch (...) {  // the call that the line tells of goes on
  }
}

}  // namespace call_log
