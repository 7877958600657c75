// The tie between a root object and its children.
#pragma once

#include <mutex>
#include <shared_mutex>

class CZentrelK4N;

namespace driver {

/// Shared by a root object and its children. A client may keep a child longer than the root; the
/// tie is cut when the root goes, and waits until the calls that are under way have left the root.
/// Any thread.
class OwnerLink {
 public:
  explicit OwnerLink(CZentrelK4N& root) : root_(&root) {}

  /// Keeps the root from going while it lives.
  class Lease {
   public:
    explicit Lease(OwnerLink& link) : lock_(link.mutex_), root_(link.root_) {}
    /// Null once the tie is cut.
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
