// Ctrl-C as a flag, so that a session is closed before the program ends.
#pragma once

namespace zk4n {

/// Takes over Ctrl-C for its life time; a second Ctrl-C ends the program at once.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;

  /// True once Ctrl-C was pressed; for as long as the process lives.
  [[nodiscard]] static bool Requested();

 private:
  void (*previous_)(int);
};

}  // namespace zk4n
