// Ways in which the instrument or its link can misbehave.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace simulator {

enum class FaultKind {
  kRefuse,          ///< the request is not carried out; the answer has a status and no body
  kDrop,            ///< the connection is closed instead of an answer
  kHeaderWord,      ///< the answer's header word is another one
  kPieces,          ///< the answer's body comes in pieces with pauses between them
  kSilence,         ///< the request is swallowed
  kDelay,           ///< the answer comes late
  kBlockStatus,     ///< the data block's trailing status word is another one
  kBodyLength,      ///< the body is cut or prolonged; the header tells its true length
  kAnnouncedLength  ///< the header tells another length than that of the body
};

/// One fault. It meets the requests that match `command` and `parameter`, lets the first `after` of
/// them pass, then strikes `times` times (0: always).
struct Fault {
  FaultKind kind = FaultKind::kDelay;
  std::optional<std::uint16_t> command = {};    ///< 1 recovery, 3 write, 4 read, 6 data
  std::optional<std::uint16_t> parameter = {};  ///< identifier of a write or read
  std::uint32_t after = 0;
  std::uint32_t times = 0;

  std::int16_t status = 0;             ///< kRefuse, kBlockStatus
  std::uint16_t word = 0;              ///< kHeaderWord
  std::int32_t bytes = 0;              ///< kPieces: size of one; the length faults: how many more
  std::chrono::milliseconds pause{0};  ///< kDelay, kPieces

  static Fault Refuse(std::uint16_t parameter, std::int16_t status, std::uint32_t times = 0) {
    return {.kind = FaultKind::kRefuse, .parameter = parameter, .times = times, .status = status};
  }
  static Fault DropAfter(std::uint32_t messages) {
    return {.kind = FaultKind::kDrop, .after = messages, .times = 1};
  }

  friend bool operator==(const Fault&, const Fault&) = default;
};

}  // namespace simulator
