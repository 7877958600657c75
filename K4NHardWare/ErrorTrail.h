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

/// Where a failure was noticed. The numbers are fixed: a trail read in the field is told by them.
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

  /// The place in words: the manager's source and the site's number.
  [[nodiscard]] std::string Location() const;

  friend bool operator==(const ErrorRecord&, const ErrorRecord&) = default;
};

/// First in, first out: every record, one by one. A link that stays dead fails every few
/// milliseconds, for months perhaps, so equal records that follow each other are kept once with
/// their number. When kLongestTrail such runs wait unread, or there is no memory for another, a
/// further failure is counted in the newest run of its kind: the order among these no longer tells,
/// and nothing is lost but, without memory, the first of a kind. Every operation may be called from
/// any thread.
class ErrorTrail {
 public:
  static constexpr std::size_t kLongestTrail = 16384;

  void Append(Status status, Site site) noexcept;
  /// Removes the oldest record; nothing when the trail is empty.
  std::optional<ErrorRecord> Take();
  /// A record, and how many like it there are in a row.
  struct Run {
    ErrorRecord record;
    std::uint64_t count = 1;
  };
  /// Looks at one of the runs; 0 is the oldest. Nothing behind the newest.
  [[nodiscard]] std::optional<Run> RunAt(std::size_t index) const;

 private:
  bool CountInLast(std::size_t runs, const ErrorRecord& record);

  mutable std::mutex mutex_;
  std::deque<Run> runs_;
};

}  // namespace k4n
