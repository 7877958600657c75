// Exclusive and shared locks on one instrument.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "visa/MachineLock.h"
#include "visa/Visa.h"

namespace zevisa {

/// The locks of this process's sessions on one instrument. While any is held, the machine's lock is
/// held too: other processes see the instrument locked exclusively, also when the sessions here
/// share it. Locks nest; one session may hold both kinds, and an exclusive lock shuts out those who
/// share. Every operation may be called from any thread and never waits for an instrument.
class ResourceLock {
 public:
  /// The lock of the instrument with this canonical address and port; one for all its sessions.
  static std::shared_ptr<ResourceLock> Of(const std::string& name);

  explicit ResourceLock(std::string name) : name_(std::move(name)) {}

  /// VI_SUCCESS, VI_SUCCESS_NESTED_EXCLUSIVE or VI_ERROR_RSRC_LOCKED.
  ViStatus TryExclusive(ViSession session);
  /// VI_SUCCESS, VI_SUCCESS_NESTED_SHARED or VI_ERROR_RSRC_LOCKED. The key is the one under which
  /// the lock is shared: an empty one is made up, or taken from the session's own lock.
  ViStatus TryShared(ViSession session, std::string& key);
  /// Undoes the last lock, the exclusive one first. VI_SUCCESS; VI_SUCCESS_NESTED_EXCLUSIVE or
  /// _SHARED while locks remain; VI_ERROR_SESN_NLOCKED.
  ViStatus Unlock(ViSession session);
  void ReleaseAll(ViSession session);

  /// Whether the session may talk to the instrument.
  [[nodiscard]] bool Admits(ViSession session) const {
    return exclusive_.load(std::memory_order_acquire) == session || AdmitsBesideOthers(session);
  }
  /// 0, VI_EXCLUSIVE_LOCK or VI_SHARED_LOCK, whoever holds it.
  [[nodiscard]] ViUInt32 State() const;
  /// The process that holds it, for people; empty when none does or the system does not tell.
  [[nodiscard]] std::string Owner() const { return MachineLock::Holder(name_); }

 private:
  [[nodiscard]] bool AdmitsBesideOthers(ViSession session) const;
  bool HoldMachine();
  void LetGoMachine();

  const std::string name_;
  mutable std::mutex mutex_;
  std::atomic<ViSession> exclusive_ = 0;  ///< the owner
  unsigned exclusive_depth_ = 0;
  std::map<ViSession, unsigned> shared_;  ///< the depth of each session that shares
  std::string key_;
  MachineLock machine_;
};

}  // namespace zevisa
