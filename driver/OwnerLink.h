// The link between a root object and its children.
#pragma once

#include <mutex>
#include <shared_mutex>

class CZentrelK4N;

namespace driver {

/// Shared by a root object and its children. A client may keep a child longer than the root: when
/// the root is destroyed, Cut waits for the calls in progress on the root, then breaks the link.
/// May be used from any thread.
class OwnerLink {
 public:
  explicit OwnerLink(CZentrelK4N& root) : root_(&root) {}

  /// Keeps the root alive as long as the lease exists.
  class Lease {
   public:
    explicit Lease(OwnerLink& link) : lock_(link.mutex_), root_(link.root_) {}
    /// Null once the link is cut.
    [[nodiscard]] CZentrelK4N* root() const { return root_; }

   private:
    std::shared_lock<std::shared_mutex> lock_;
    CZentrelK4N* root_;
  };

  void Cut() {
    const std::unique_lock lock(mutex_);
    root_ = nullptr;
  }

 private:
  std::shared_mutex mutex_;
  CZentrelK4N* root_;
};

}  // namespace driver
