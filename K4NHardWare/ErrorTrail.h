// The failures of a manager, oldest first, until the client asks for them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

#include "status/Status.h"

namespace k4n {

/// Where a failure was detected. The numbers are fixed: support staff identify a failure by them.
enum class Site : int {
  kInstrumentKind = 142,      ///< another kind of instrument answered
  kKindProbe = 162,           ///< no kind was confirmed
  kOutputState = 168,         ///< reading the output state at connection
  kSingleRead = 309,          ///< the block that FetchData reads by itself
  kWorkerRead = 445,          ///< the worker's first read of a block
  kWorkerRepeatedRead = 452,  ///< its further reads while the sweep runs
  kBlockStatus = 467,         ///< the status word of a stored block
  kWorkerRfButton = 492,
  kFrequencyAxis = 601,
  kPowerAxis = 602,
  kCwFrequency = 611,
  kCwLevel = 612,
  kOutputEnabled = 613,
  kFrequencyStep = 621,
  kFrequencyStepPower = 622,  ///< the power axis after a frequency step
  kPowerStep = 623,
  kPowerStepFrequency = 624,  ///< the frequency axis after a power step
  kSweepTrigger = 631,
  kDwell = 632,
  kFrequencyList = 641,
  kPowerList = 642,
  kPulseTrain = 651,
  kPulseOff = 652,
  kTriggerOutput = 661,
  kSecondTriggerInput = 662,
  kSecondTriggerOutput = 663,
  kSyncGenerator = 671,
  kRfButton = 681,
  kPllState = 682,
  kErgState = 683,
  kLevelState = 684,
  kAttenMode = 691,
  kExtRefGen = 692,
  kExtRefPhaseDelay = 693,
  kCompensMode = 694,
  kAveraging = 701,
  kOpenSession = 991,
  kInitializeModel = 1002,
};

struct ErrorRecord {
  Status status = Status::kOk;
  Site site{};

  /// The place as text: the manager's source and the site's number.
  [[nodiscard]] std::string Location() const;

  friend bool operator==(const ErrorRecord&, const ErrorRecord&) = default;
};

/// A queue of failure records, first in, first out. A dead link may fail every few milliseconds for
/// months, so equal records in a row are stored once, as a run with a count. With kLongestTrail
/// unread runs, or without memory for another, a new failure is added to the count of the newest
/// run of its kind: its place in the order is lost, the failure is not. Only without memory the
/// first failure of a kind is lost. Every operation may be called from any thread.
class ErrorTrail {
 public:
  static constexpr std::size_t kLongestTrail = 16384;

  void Append(Status status, Site site) noexcept;
  /// Removes the oldest record; nothing when the trail is empty.
  std::optional<ErrorRecord> Take();
  /// Equal records in a row.
  struct Run {
    ErrorRecord record;
    std::uint64_t count = 1;
  };
  /// Returns a run without removing it; 0 is the oldest. Nothing for an index behind the newest.
  [[nodiscard]] std::optional<Run> RunAt(std::size_t index) const;

 private:
  bool CountInLast(std::size_t runs, const ErrorRecord& record);

  mutable std::mutex mutex_;
  std::deque<Run> runs_;
};

}  // namespace k4n
