#include "K4NHardWare/ErrorTrail.h"

#include <algorithm>

std::string ErrorRecord::Location() const {
  return "File: .\\K4NHardWare\\K4NManager Line: " + std::to_string(static_cast<int>(site));
}

void ErrorTrail::Append(Status status, Site site) {
  const std::lock_guard lock(mutex_);
  const ErrorRecord record{status, site};
  const bool full = runs_.size() >= kLongestTrail;
  const auto newest = runs_.rbegin();
  const auto last = full || runs_.empty() ? runs_.rend() : newest + 1;
  const auto equal =
      std::find_if(newest, last, [&](const Run& run) { return run.record == record; });
  if (equal != last) {
    ++equal->count;
  } else {
    runs_.push_back({record});  // also in a full trail: there are only so many kinds of failures
  }
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
