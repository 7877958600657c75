// The faults that wait for their requests, and how one changes an answer.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/Wire.h"

namespace simulator {

class FaultList {
 public:
  void Add(const Fault& fault) { pending_.push_back({fault}); }
  void Clear() { pending_.clear(); }
  /// Every fault that matches the request counts it; the first that is due strikes.
  std::optional<Fault> Take(std::uint16_t command, std::optional<std::uint16_t> parameter);
  /// Requests that were struck so far.
  [[nodiscard]] std::uint64_t struck() const { return struck_; }

 private:
  struct Pending {
    Fault fault;
    std::uint32_t met = 0;     ///< requests that were let pass
    std::uint32_t struck = 0;  ///< those that it struck
  };
  std::vector<Pending> pending_;
  std::uint64_t struck_ = 0;
};

/// Bytes on their way to a client, and their timing.
struct Outgoing {
  Bytes bytes;
  std::chrono::milliseconds delay{0};  ///< before the first byte
  std::size_t first = 0;               ///< bytes of the first piece
  std::size_t piece = 0;               ///< bytes of each further one
  std::chrono::milliseconds pause{0};  ///< between two
};

/// The answer as it goes on the wire; a fault of the kinds that do so changes it.
Outgoing ShapeAnswer(Message answer, const std::optional<Fault>& fault);

}  // namespace simulator
