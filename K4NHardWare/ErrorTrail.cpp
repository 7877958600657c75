#include "K4NHardWare/ErrorTrail.h"

std::string ErrorRecord::Location() const {
  return "File: .\\K4NHardWare\\K4NManager Line: " + std::to_string(static_cast<int>(site));
}

void ErrorTrail::Append(Status status, Site site) {
  const std::lock_guard lock(mutex_);
  records_.push_back({status, site});
}

std::optional<ErrorRecord> ErrorTrail::Take() {
  const std::lock_guard lock(mutex_);
  if (records_.empty()) return std::nullopt;
  const ErrorRecord oldest = records_.front();
  records_.pop_front();
  return oldest;
}

std::vector<ErrorRecord> ErrorTrail::Records() const {
  const std::lock_guard lock(mutex_);
  return {records_.begin(), records_.end()};
}
