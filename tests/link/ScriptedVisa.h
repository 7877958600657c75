// A VISA library that plays a script: it records every call with its bytes and answers each request
// of the protocol as the test wants it. Tests load it by the name that the driver looks for and so
// reach the same module; the functions here steer it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os/Module.h"
#include "tests/link/Hex.h"
#include "tests/link/Request.h"

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

/// One recorded call. `value`: access mode x 65536 + open time-out of viOpen, the value of the
/// time-out attribute, the count asked for by viRead, the code of viStatusDesc. `bytes`: the name
/// of viOpen, the bytes of viWrite, the bytes that viRead returned.
struct CallView {
  Function function;
  std::uint32_t session;
  std::uint64_t value;
  std::int32_t result;
  std::span<const std::uint8_t> bytes;
};

inline constexpr std::int32_t kForEver = -1;
inline constexpr std::int32_t kThrow = 1;  ///< as a result of SetResult: the call throws
inline constexpr std::int32_t kTimeout = static_cast<std::int32_t>(0xBFFF0015);
inline constexpr std::int32_t kConnectionLost = static_cast<std::int32_t>(0xBFFF00A6);

/// How one answer goes wrong on its way, and what the link is like after it.
struct Spoiling {
  static constexpr std::int32_t kGoesOn = 0;
  static constexpr std::int32_t kEndless = 2;  ///< reads find bytes for ever, until LinkIsBack
  static constexpr std::uint32_t kAlways = 0xFFFFFFFF;

  std::uint32_t after = 0;  ///< answers that pass first
  /// Changes the answer in place and returns its size; null: as it is.
  std::size_t (*change)(std::uint8_t* answer, std::size_t size, std::size_t capacity) = nullptr;
  std::size_t piece = 0;       ///< bytes between two time-outs; 0: all at once
  std::uint32_t silences = 0;  ///< time-outs of reads that find nothing more, before `then`
  /// What reads and clears give from then on until LinkIsBack or viOpen.
  std::int32_t then = kGoesOn;
};

/// Answers every request of this kind that finds no queued answer. The newest rule counts.
struct Rule {
  std::uint16_t command = 0;
  std::uint8_t id = 0;    ///< low byte of the body
  std::uint8_t type = 0;  ///< 0: any
  std::int32_t times = kForEver;
  std::uint16_t status = 0;  ///< the 16 bits on the wire
  bool echo = false;         ///< the request's body in place of `body`
  std::span<const std::uint8_t> body = {};
};

/// What number an answer carries, by its request's and by the count of the answers.
using Numbering = std::uint32_t(std::uint32_t request, std::uint32_t count);

/// What the module offers; safe from any thread. Without a script every request is answered at once
/// with status 0 and its own body, and data requests (command 6) stay unanswered. A read that finds
/// too little returns what there is with a time-out, without waiting.
class Control {
 public:
  /// Forgets script, record and sessions.
  virtual void Reset() = 0;

  /// The next `times` calls of a function return `result` and do nothing.
  virtual void SetResult(Function function, std::int32_t result, std::int32_t times) = 0;
  /// Answers the next request that has no answer yet: status and body in a correct frame that
  /// repeats the request's command, count and type, and its number unless SetNumbering says
  /// otherwise.
  virtual void QueueAnswer(std::uint16_t status, std::span<const std::uint8_t> body) = 0;
  /// As QueueAnswer with exactly these bytes on the wire, also none.
  virtual void QueueRaw(std::span<const std::uint8_t> bytes) = 0;
  virtual void SetRule(const Rule& rule) = 0;
  /// Completes the data request that waits, or else the next one. `format`: the answer's type byte.
  virtual void CompleteData(std::span<const std::uint8_t> body, char format,
                            std::uint16_t status) = 0;

  virtual void SetNumbering(Numbering* numbering) = 0;
  /// The answer to the next request comes right before the answer to the one after it.
  virtual void DelayAnswer() = 0;
  /// Spoils one of the answers to come, once.
  virtual void SpoilAnswer(const Spoiling& spoiling) = 0;
  /// Ends whatever a spoiled answer left, also one that has not been spoiled yet. True if one has.
  virtual bool LinkIsBack() = 0;

  /// The record since the last Reset or ClearRecord, in the order of the calls.
  virtual std::size_t CallCount() const = 0;
  /// Valid until the record is cleared. False past the end.
  virtual bool GetCall(std::size_t index, CallView& call) const = 0;
  virtual void ClearRecord() = 0;
  /// Sessions opened and not closed.
  virtual std::size_t OpenSessions() const = 0;

 protected:
  ~Control() = default;
};

/// The one symbol besides VISA's: `Control* ScriptedVisaControl()`.
using ControlFunction = Control*();
inline constexpr char kControlName[] = "ScriptedVisaControl";

/// The test's side: holds the module loaded. Starts and ends with a fresh script.
class Visa {
 public:
  Visa() {
    if (!module_.Load("zevisa64.dll")) throw std::runtime_error("no scripted VISA library found");
    auto* const control = module_.FunctionOf<ControlFunction>(kControlName);
    if (control == nullptr)
      throw std::runtime_error("the VISA library found is not the scripted one");
    control_ = control();
    control_->Reset();
  }
  ~Visa() { control_->Reset(); }
  Visa(const Visa&) = delete;
  Visa& operator=(const Visa&) = delete;

  Control& control() { return *control_; }

  void SetResult(Function function, std::uint32_t result, std::int32_t times = kForEver) {
    control_->SetResult(function, static_cast<std::int32_t>(result), times);
  }
  /// `status` as the 16 bits on the wire.
  void Answer(std::uint16_t status, const Bytes& body = {}) { control_->QueueAnswer(status, body); }
  /// Status and the request's own body for every such request.
  void Rule(std::uint16_t command, std::uint8_t id, std::uint16_t status, std::uint8_t type = 0,
            std::int32_t times = kForEver) {
    control_->SetRule({command, id, type, times, status, true});
  }
  /// Status 0 and this body.
  void RuleBody(std::uint16_t command, std::uint8_t id, const Bytes& body, std::uint8_t type = 0,
                std::int32_t times = kForEver) {
    control_->SetRule({command, id, type, times, 0, false, body});
  }
  void CompleteData(const Bytes& body, char format = 'A', std::uint16_t status = 0) {
    control_->CompleteData(body, format, status);
  }

  /// All recorded calls of one function.
  [[nodiscard]] std::vector<CallView> Calls(Function function) const {
    std::vector<CallView> calls;
    CallView call{};
    for (std::size_t i = 0; control_->GetCall(i, call); ++i) {
      if (call.function == function) calls.push_back(call);
    }
    return calls;
  }
  /// What was written since the record was cleared, without a request of which there is only the
  /// header yet.
  [[nodiscard]] std::vector<Request> Requests() const {
    std::vector<Request> requests;
    const auto writes = Calls(Function::kWrite);
    for (std::size_t i = 0; i + 1 < writes.size(); i += 2) {
      requests.push_back(Parse(writes[i].bytes, writes[i + 1].bytes));
    }
    return requests;
  }
  /// The names of these requests.
  [[nodiscard]] std::vector<std::string> RequestOrder() const {
    std::vector<std::string> order;
    for (const Request& request : Requests()) order.push_back(request.Name());
    return order;
  }
  void ClearRecord() { control_->ClearRecord(); }

 private:
  os::Module module_;
  Control* control_ = nullptr;
};

}  // namespace scripted
