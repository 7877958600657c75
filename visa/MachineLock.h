// Locks that hold across the processes of one machine.
#pragma once

#include <cstdint>
#include <string>

namespace zevisa {

/// A name in the kernel that one owner at a time holds. It goes with its owner, however that ends.
class MachineLock {
 public:
  MachineLock() = default;
  ~MachineLock() { Release(); }
  MachineLock(const MachineLock&) = delete;
  MachineLock& operator=(const MachineLock&) = delete;

  /// Takes the name; false when it is held, here or elsewhere. Never waits.
  bool TryAcquire(const std::string& name);
  void Release();
  [[nodiscard]] bool IsOwned() const { return handle_ != kNone; }

  /// Whether anybody holds the name.
  static bool IsHeld(const std::string& name);
  /// Who holds the name, for people: "process 1234 (zk4n)". Empty when nobody does, or when the
  /// system does not tell. Looks through what runs on the machine: not for every exchange.
  static std::string Holder(const std::string& name);

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t handle_ = kNone;
  /// A second name, which says who the holder is. The lock holds without it.
  std::intptr_t note_ = kNone;
};

}  // namespace zevisa
