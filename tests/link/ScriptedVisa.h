// A VISA library that plays a script: it records every call with its bytes and answers each request
// of the protocol as the test wants it. It has the name that the driver looks for, and so is the
// module that the driver loads when a test is linked with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tests/link/Hex.h"
#include "tests/link/Request.h"
#include "visa/Visa.h"

namespace scripted {

/// The functions that the module exports.
enum class Function : std::uint32_t {
  kOpenDefaultRM,
  kOpen,
  kClose,
  kSetAttribute,
  kGetAttribute,
  kRead,
  kWrite,
  kClear,
  kStatusDesc,
  kCount,
};

/// One recorded call.
struct Call {
  Function function;
  /// Access mode x 65536 + open time-out of viOpen, the value of the time-out attribute.
  std::uint64_t value = 0;
  Bytes bytes = {};  ///< the name of viOpen, the bytes of viWrite
};

inline constexpr std::int32_t kForEver = -1;
inline constexpr std::int32_t kThrow = 1;  ///< as a result of SetResult: the call throws
inline constexpr std::int32_t kTimeout = VI_ERROR_TMO;
inline constexpr std::int32_t kConnectionLost = VI_ERROR_CONN_LOST;

/// How one answer goes wrong on its way, and what the link is like after it.
struct Spoiling {
  static constexpr std::int32_t kGoesOn = 0;
  static constexpr std::int32_t kEndless = 2;  ///< reads find bytes for ever, until LinkIsBack
  static constexpr std::uint32_t kAlways = 0xFFFFFFFF;

  std::uint32_t after = 0;  ///< answers that pass first
  bool is_late = false;     ///< it comes right before the answer to the next request
  /// Changes the answer in place, where it may grow to 7016 bytes, and returns its size; null: as
  /// it is.
  std::size_t (*change)(std::uint8_t* answer, std::size_t size) = nullptr;
  std::size_t piece = 0;       ///< bytes between two time-outs; 0: all at once
  std::uint32_t silences = 0;  ///< time-outs of reads that find nothing more, before `then`
  /// What reads and clears give from then on until LinkIsBack or viOpen.
  std::int32_t then = kGoesOn;
};

/// What number an answer carries, by its request's and by the count of the answers.
using Numbering = std::uint32_t(std::uint32_t request, std::uint32_t count);

/// The test's hand on the module; safe from any thread. Without a script every request is answered
/// at once with status 0 and its own body, and data requests (command 6) stay unanswered. A read
/// that finds too little returns what there is with a time-out, without waiting.
class ZK_VISA Visa {
 public:
  using View = std::span<const std::uint8_t>;

  Visa() { Reset(); }
  ~Visa() { Reset(); }
  Visa(const Visa&) = delete;
  Visa& operator=(const Visa&) = delete;

  /// Forgets script, record and sessions.
  void Reset();

  /// The next `times` calls of a function return `result` and do nothing.
  void SetResult(Function function, std::uint32_t result, std::int32_t times = kForEver);
  /// Answers the next request that has no answer yet: status, as the 16 bits on the wire, and body
  /// in a correct frame that repeats the request's command, count and type, and its number unless
  /// SetNumbering says otherwise.
  void Answer(std::uint16_t status, View body = {});
  /// As Answer with exactly these bytes on the wire, also none.
  void AnswerRaw(View bytes);
  /// Answers every request of this kind that finds no queued answer: status and the request's own
  /// body. `id`: low byte of the body; `type` 0: any. The newest rule counts.
  void Rule(std::uint16_t command, std::uint8_t id, std::uint16_t status, std::uint8_t type = 0,
            std::int32_t times = kForEver);
  /// The same with status 0 and this body.
  void RuleBody(std::uint16_t command, std::uint8_t id, View body, std::uint8_t type = 0,
                std::int32_t times = kForEver);
  /// Completes the data request that waits, or else the next one. `format`: the answer's type byte.
  void CompleteData(View body, char format = 'A', std::uint16_t status = 0);

  void SetNumbering(Numbering* numbering);
  /// Spoils one of the answers to come, once.
  void SpoilAnswer(const Spoiling& spoiling);
  /// Ends whatever a spoiled answer left, also one that has not been spoiled yet. True if one has.
  bool LinkIsBack();

  /// Sessions opened and not closed.
  [[nodiscard]] std::size_t OpenSessions() const;
  /// One of the calls since the last Reset or ClearRecord, in their order, valid until then; null
  /// past the end.
  [[nodiscard]] const Call* CallAt(std::size_t index) const;
  void ClearRecord();

  /// All recorded calls of one function.
  [[nodiscard]] std::vector<const Call*> Calls(Function function) const {
    std::vector<const Call*> calls;
    for (std::size_t i = 0; const Call* const call = CallAt(i); ++i) {
      if (call->function == function) calls.push_back(call);
    }
    return calls;
  }
  /// What was written since the record was cleared, without a request of which there is only the
  /// header yet.
  [[nodiscard]] std::vector<Request> Requests() const {
    std::vector<Request> requests;
    const auto writes = Calls(Function::kWrite);
    for (std::size_t i = 0; i + 1 < writes.size(); i += 2) {
      requests.push_back(Parse(writes[i]->bytes, writes[i + 1]->bytes));
    }
    return requests;
  }
  /// The names of these requests.
  [[nodiscard]] std::vector<std::string> RequestOrder() const {
    std::vector<std::string> order;
    for (const Request& request : Requests()) order.push_back(request.Name());
    return order;
  }
};

}  // namespace scripted
