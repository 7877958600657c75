// Waiting for what another thread or process brings about.
#pragma once

#include <chrono>
#include <thread>

/// True as soon as the condition holds; false when it does not within a time that only a fault
/// needs.
template <typename Condition>
[[nodiscard]] bool WaitUntil(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}
