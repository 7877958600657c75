// What readers of a trace tell: exchanges, other calls, and what was wrong with them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zk4n/iotrace/MessageStream.h"
#include "zk4n/iotrace/TraceLine.h"

namespace iotrace {

enum class Problem : std::uint8_t {
  kTimeout,     ///< no answer, or not the whole of one, in time
  kConnection,  ///< reading or writing failed otherwise
  kHeaderWord,  ///< not 0x55AA
  kLength,      ///< of an answer, or of a block, that is not what it should be
  kNumber,      ///< out of order
  kMismatch,    ///< the answer to something else
  kRefused,     ///< a negative status
  kUnpaired,    ///< an answer without a request, a request that was given up
  kPassedOver,  ///< an answer to an earlier request; no failure of this one
  kCall         ///< another call that failed
};
inline constexpr std::size_t kProblems = 10;

/// "time-out", "header word" ...
std::string_view NameOf(Problem problem);

struct Remark {
  Problem problem;
  std::string text;  ///< one short line
};

/// A request and its answer.
struct Exchange {
  std::size_t line = 0;  ///< of the trace, where it begins
  std::uint64_t process = 0;
  std::uint64_t session = 0;
  TimePoint begin;
  std::optional<TimePoint> end;  ///< when the whole answer was there
  std::optional<StreamMessage> request;
  std::optional<StreamMessage> answer;
  std::string open_end;  ///< why there is no answer where that is no failure: "given up"
  std::vector<Remark> remarks;

  [[nodiscard]] bool IsData() const;
};

/// What the answer to a data request holds.
struct Block {
  std::size_t points = 0;
  std::optional<std::int16_t> status;  ///< none where the trace's bound cut it off
};
/// None for a body that has another length than a block.
std::optional<Block> BlockOf(const StreamMessage& answer);

/// A call that a reader of the trace wants to know of, beside reads and writes.
struct Call {
  std::size_t line = 0;  ///< of the trace
  TraceLine made;
  std::vector<Remark> remarks;
};

/// Takes what a trace tells, in its order.
class Listener {
 public:
  virtual ~Listener() = default;
  virtual void On(const Exchange& exchange) = 0;
  virtual void On(const Call& call) = 0;
  /// A line that is none of a trace, and why.
  virtual void OnDamaged(std::size_t line, const std::string& why) = 0;
};

}  // namespace iotrace
