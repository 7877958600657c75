#include "visa/ResourceLock.h"

#include <chrono>

namespace zevisa {

std::shared_ptr<ResourceLock> ResourceLock::Of(const std::string& name) {
  static std::mutex mutex;
  static std::map<std::string, std::weak_ptr<ResourceLock>> locks;
  const std::lock_guard guard(mutex);
  std::erase_if(locks, [](const auto& entry) { return entry.second.expired(); });
  std::shared_ptr<ResourceLock> lock = locks[name].lock();
  if (!lock) {
    lock = std::make_shared<ResourceLock>(name);
    locks[name] = lock;
  }
  return lock;
}

ViStatus ResourceLock::TryExclusive(ViSession session) {
  const std::lock_guard guard(mutex_);
  if (exclusive_ == session) {
    ++exclusive_depth_;
    return VI_SUCCESS_NESTED_EXCLUSIVE;
  }
  const bool is_shut_out = !shared_.empty() && !shared_.contains(session);
  if (exclusive_ != 0 || is_shut_out || !HoldMachine()) return VI_ERROR_RSRC_LOCKED;
  exclusive_.store(session, std::memory_order_release);
  exclusive_depth_ = 1;
  return VI_SUCCESS;
}

ViStatus ResourceLock::TryShared(ViSession session, std::string& key) {
  const std::lock_guard guard(mutex_);
  if (exclusive_ != 0 && exclusive_ != session) return VI_ERROR_RSRC_LOCKED;
  const bool has_share = shared_.contains(session);
  if (!shared_.empty() && key != key_ && !(has_share && key.empty())) return VI_ERROR_RSRC_LOCKED;
  if (!HoldMachine()) return VI_ERROR_RSRC_LOCKED;
  if (shared_.empty()) {
    const auto stamp = std::chrono::system_clock::now().time_since_epoch().count();
    key_ = key.empty() ? name_ + "/" + std::to_string(session) + "/" + std::to_string(stamp) : key;
  }
  key = key_;
  return ++shared_[session] == 1 ? VI_SUCCESS : VI_SUCCESS_NESTED_SHARED;
}

ViStatus ResourceLock::Unlock(ViSession session) {
  const std::lock_guard guard(mutex_);
  const auto share = shared_.find(session);
  if (exclusive_ == session) {
    if (--exclusive_depth_ > 0) return VI_SUCCESS_NESTED_EXCLUSIVE;
    exclusive_.store(0, std::memory_order_release);
    if (share != shared_.end()) return VI_SUCCESS_NESTED_SHARED;
  } else {
    if (share == shared_.end()) return VI_ERROR_SESN_NLOCKED;
    if (--share->second > 0) return VI_SUCCESS_NESTED_SHARED;
    shared_.erase(share);
  }
  LetGoMachine();
  return VI_SUCCESS;
}

void ResourceLock::ReleaseAll(ViSession session) {
  while (Unlock(session) >= 0) {
  }
}

ViUInt32 ResourceLock::State() const {
  const std::lock_guard guard(mutex_);
  if (exclusive_ != 0) return VI_EXCLUSIVE_LOCK;
  if (!shared_.empty()) return VI_SHARED_LOCK;
  return MachineLock::IsHeld(name_) ? VI_EXCLUSIVE_LOCK : 0;
}

bool ResourceLock::AdmitsBesideOthers(ViSession session) const {
  const std::lock_guard guard(mutex_);
  if (exclusive_ != 0) return exclusive_ == session;
  if (!shared_.empty()) return shared_.contains(session);
  return !MachineLock::IsHeld(name_);
}

bool ResourceLock::HoldMachine() { return machine_.IsOwned() || machine_.TryAcquire(name_); }

void ResourceLock::LetGoMachine() {
  if (exclusive_ == 0 && shared_.empty()) machine_.Release();
}

}  // namespace zevisa
