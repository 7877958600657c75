#include "K4NHardWare/ErrorTrail.h"

#include <algorithm>
#include <new>

#include "K4NHardWare/CallLog.h"
#include "status/HresultName.h"

namespace k4n {

namespace {

void LogRecord(const ErrorRecord& record) noexcept {
  try {
    const std::int32_t code = ToCode(record.status);
    call_log::Write("error trail: " + HresultText(code) + " (" + std::string(HresultName(code)) +
                    "), " + record.Location());
  } catch (const std::bad_alloc&) {  // the trail has it
  }
}

}  // namespace

std::string ErrorRecord::Location() const {
  return "File: .\\K4NHardWare\\K4NManager Line: " + std::to_string(static_cast<int>(site));
}

void ErrorTrail::Append(Status status, Site site) noexcept {
  const ErrorRecord record{status, site};
  if (call_log::IsOn()) LogRecord(record);
  const std::lock_guard lock(mutex_);
  const bool full = runs_.size() >= kLongestTrail;
  if (CountInLast(full ? runs_.size() : 1, record)) return;
  try {
    runs_.push_back({record});  // in a full trail, too: the kinds of failures are few
  } catch (const std::bad_alloc&) {
    CountInLast(runs_.size(), record);
  }
}

/// Adds a failure to the newest equal run among the last `runs`; false if there is none.
bool ErrorTrail::CountInLast(std::size_t runs, const ErrorRecord& record) {
  const auto end = runs_.rbegin() + static_cast<std::ptrdiff_t>(std::min(runs, runs_.size()));
  const auto equal =
      std::find_if(runs_.rbegin(), end, [&](const Run& run) { return run.record == record; });
  if (equal == end) return false;
  ++equal->count;
  return true;
}

std::optional<ErrorRecord> ErrorTrail::Take() {
  const std::lock_guard lock(mutex_);
  if (runs_.empty()) return std::nullopt;
  const ErrorRecord oldest = runs_.front().record;
  if (--runs_.front().count == 0) runs_.pop_front();
  return oldest;
}

std::optional<ErrorTrail::Run> ErrorTrail::RunAt(std::size_t index) const {
  const std::lock_guard lock(mutex_);
  if (index >= runs_.size()) return std::nullopt;
  return runs_[index];
}

}  // namespace k4n
