// The scripted VISA library: see ScriptedVisa.h.
#include "tests/link/ScriptedVisa.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <utility>

#include "platform/os/Sync.h"
#define ZK_VISA_LIBRARY
#include "visa/Visa.h"

namespace scripted {
namespace {

constexpr std::size_t kHeaderSize = 16;
constexpr std::size_t kSpoiltCapacity = 7000;  // of a body
constexpr std::uint16_t kDataCommand = 6;
constexpr ViSession kManagerSession = 1;

using View = std::span<const std::uint8_t>;
Bytes ToBytes(View bytes) { return {bytes.begin(), bytes.end()}; }

struct Call {
  Function function;
  std::uint32_t session = 0;
  std::uint64_t value = 0;
  std::int32_t result = 0;
  Bytes bytes = {};
};

struct Answer {
  std::uint16_t status = 0;
  Bytes bytes;
  bool is_raw = false;
  std::optional<char> format = {};
};

struct KeptRule : Rule {
  Answer answer;
};

/// Bytes on their way to the reader; after `pause` a read stops at their end with one time-out.
struct Part {
  Bytes bytes;
  bool pause = false;
};

struct ForcedResult {
  std::int32_t result = 0;
  std::int32_t times = 0;
};

/// What a reset forgets.
struct State {
  std::array<ForcedResult, static_cast<std::size_t>(Function::kCount)> forced{};
  std::deque<Answer> answers;
  std::deque<Answer> blocks;
  std::deque<KeptRule> rules;  // the newest first
  std::deque<Call> record;
  std::set<std::uint32_t> sessions;
  std::uint32_t timeout = 2000;
  Bytes written;  // of the request that is not complete
  std::deque<Part> to_read;
  std::optional<Bytes> data_request;  // that waits for its block
  Numbering* numbering = nullptr;     // none: as its request
  std::uint32_t answer_count = 0;
  bool delays_answer = false;
  Bytes delayed;
  std::optional<Spoiling> spoiling;  // of an answer to come
  std::optional<Spoiling> spoilt;    // what the last one left
};

class Script final : public Control, public State {
 public:
  void Reset() override {
    const std::lock_guard lock(mutex_);
    State::operator=({});
  }
  void SetResult(Function function, std::int32_t result, std::int32_t times) override {
    const std::lock_guard lock(mutex_);
    forced[static_cast<std::size_t>(function)] = {result, times};
  }
  void QueueAnswer(std::uint16_t status, View body) override {
    const std::lock_guard lock(mutex_);
    answers.push_back({status, ToBytes(body)});
  }
  void QueueRaw(View bytes) override {
    const std::lock_guard lock(mutex_);
    answers.push_back({.bytes = ToBytes(bytes), .is_raw = true});
  }
  void SetRule(const Rule& rule) override {
    const std::lock_guard lock(mutex_);
    rules.push_front({rule, {rule.status, ToBytes(rule.body)}});
  }
  void CompleteData(View body, char format, std::uint16_t status) override {
    const std::lock_guard lock(mutex_);
    blocks.push_back({.status = status, .bytes = ToBytes(body), .format = format});
    if (data_request) SendBlock(*std::exchange(data_request, std::nullopt));
  }
  void SetNumbering(Numbering* of_answers) override {
    const std::lock_guard lock(mutex_);
    numbering = of_answers;
  }
  void DelayAnswer() override {
    const std::lock_guard lock(mutex_);
    delays_answer = true;
  }
  void SpoilAnswer(const Spoiling& how) override {
    const std::lock_guard lock(mutex_);
    spoiling = how;
  }
  bool LinkIsBack() override {
    const std::lock_guard lock(mutex_);
    spoilt.reset();
    return !std::exchange(spoiling, std::nullopt);
  }
  std::size_t CallCount() const override {
    const std::lock_guard lock(mutex_);
    return record.size();
  }
  bool GetCall(std::size_t index, CallView& view) const override {
    const std::lock_guard lock(mutex_);
    if (index >= record.size()) return false;
    const Call& call = record[index];
    view = {call.function, call.session, call.value, call.result, call.bytes};
    return true;
  }
  void ClearRecord() override {
    const std::lock_guard lock(mutex_);
    record.clear();
  }
  std::size_t OpenSessions() const override {
    const std::lock_guard lock(mutex_);
    return sessions.size();
  }

  /// One call of a VISA function: it does what the test forces, or else `act`, and is recorded.
  template <typename Act>
  ViStatus Run(Call call, Act act) {
    const std::lock_guard lock(mutex_);
    const auto forced_result = TakeForced(call.function);
    const ViStatus result = forced_result ? *forced_result : act(call);
    call.result = result;
    record.push_back(std::move(call));
    return result;
  }

  ViStatus Open(ViSession& session);
  ViStatus Read(ViByte* buffer, ViUInt32 count, ViUInt32& returned);
  ViStatus Clear();
  void TakeRequests(const Bytes& bytes);

 private:
  std::optional<std::int32_t> TakeForced(Function function);
  void HandleRequest(const Bytes& request);
  KeptRule* FindRule(const Bytes& request);
  void Send(const Bytes& request, const Answer& answer);
  void Number(Bytes& answer);
  void SendBlock(const Bytes& request);
  void SendSpoiled(Bytes bytes);
  [[nodiscard]] bool IsLost() const { return spoilt && spoilt->silences == 0 && spoilt->then < 0; }
  ViStatus ReadNothing(ViByte* buffer, ViUInt32 count, ViUInt32& returned);

  mutable std::mutex mutex_;
  std::uint32_t last_session_ = kManagerSession;
};

std::optional<std::int32_t> Script::TakeForced(Function function) {
  ForcedResult& result = forced[static_cast<std::size_t>(function)];
  if (result.times == 0) return std::nullopt;
  if (result.times > 0) --result.times;
  if (result.result == kThrow) throw std::runtime_error("scripted");
  return result.result;
}

ViStatus Script::Open(ViSession& session) {
  session = ++last_session_;
  spoilt.reset();
  to_read.clear();
  sessions.insert(session);
  return VI_SUCCESS;
}

ViStatus Script::Read(ViByte* buffer, ViUInt32 count, ViUInt32& returned) {
  while (returned < count) {
    if (to_read.empty()) return ReadNothing(buffer, count, returned);
    Part& part = to_read.front();
    const auto size =
        static_cast<ViUInt32>(std::min<std::size_t>(part.bytes.size(), count - returned));
    std::copy_n(part.bytes.begin(), size, buffer + returned);
    part.bytes.erase(part.bytes.begin(), part.bytes.begin() + size);
    returned += size;
    if (!part.bytes.empty()) continue;
    const bool pause = part.pause;
    to_read.pop_front();
    if (pause && returned < count) return VI_ERROR_TMO;
  }
  return VI_SUCCESS_MAX_CNT;
}

ViStatus Script::ReadNothing(ViByte* buffer, ViUInt32 count, ViUInt32& returned) {
  if (!spoilt || spoilt->then == Spoiling::kGoesOn) return VI_ERROR_TMO;
  if (spoilt->silences != 0) {
    if (spoilt->silences != Spoiling::kAlways) --spoilt->silences;
    os::Sleep(std::chrono::milliseconds(1));  // lest the record grow without end
    return VI_ERROR_TMO;
  }
  if (spoilt->then != Spoiling::kEndless) return spoilt->then;
  std::fill(buffer + returned, buffer + count, ViByte{0x5A});
  returned = count;
  return VI_SUCCESS_MAX_CNT;
}

ViStatus Script::Clear() {
  if (IsLost()) return spoilt->then;
  to_read.clear();
  data_request.reset();
  return VI_SUCCESS;
}

void Script::TakeRequests(const Bytes& bytes) {
  if (IsLost()) return;
  written.insert(written.end(), bytes.begin(), bytes.end());
  while (written.size() >= kHeaderSize) {
    const std::size_t size = kHeaderSize + static_cast<std::size_t>(written[6] | written[7] << 8);
    if (written.size() < size) return;
    const auto end = written.begin() + static_cast<std::ptrdiff_t>(size);
    const Bytes request(written.begin(), end);
    written.erase(written.begin(), end);
    HandleRequest(request);
  }
}

void Script::HandleRequest(const Bytes& request) {
  if (!answers.empty()) {
    Send(request, answers.front());
    answers.pop_front();
    return;
  }
  KeptRule* const rule = FindRule(request);
  if (rule == nullptr && request[2] == kDataCommand) {
    if (blocks.empty()) {
      data_request = request;
    } else {
      SendBlock(request);
    }
    return;
  }
  Answer answer = rule != nullptr ? rule->answer : Answer{};
  if (rule == nullptr || rule->echo) {
    answer.bytes.assign(request.begin() + kHeaderSize, request.end());
  }
  Send(request, answer);
}

KeptRule* Script::FindRule(const Bytes& request) {
  const std::uint8_t id = request.size() > kHeaderSize ? request[kHeaderSize] : 0;
  const auto rule = std::ranges::find_if(rules, [&](const Rule& item) {
    return item.times != 0 && item.command == request[2] && item.id == id &&
           (item.type == 0 || item.type == request[9]);
  });
  if (rule == rules.end()) return nullptr;
  if (rule->times > 0) --rule->times;
  return &*rule;
}

void Script::SendBlock(const Bytes& request) {
  Send(request, blocks.front());
  blocks.pop_front();
}

void Script::Send(const Bytes& request, const Answer& answer) {
  Bytes bytes;
  if (!answer.is_raw) {
    bytes.assign(request.begin(), request.begin() + kHeaderSize);
    bytes[4] = static_cast<std::uint8_t>(answer.status);
    bytes[5] = static_cast<std::uint8_t>(answer.status >> 8);
    bytes[6] = static_cast<std::uint8_t>(answer.bytes.size());
    bytes[7] = static_cast<std::uint8_t>(answer.bytes.size() >> 8);
    if (answer.format) bytes[9] = static_cast<std::uint8_t>(*answer.format);
    Number(bytes);
  }
  bytes.insert(bytes.end(), answer.bytes.begin(), answer.bytes.end());
  if (std::exchange(delays_answer, false)) {
    delayed = std::move(bytes);
    return;
  }
  if (!delayed.empty()) to_read.push_back({std::exchange(delayed, {})});
  if (spoiling && spoiling->after-- == 0) {
    SendSpoiled(std::move(bytes));
  } else {
    to_read.push_back({std::move(bytes)});
  }
}

/// Puts the answer's number in the place of its request's.
void Script::Number(Bytes& answer) {
  constexpr std::size_t kNumber = 12;
  ++answer_count;
  if (numbering == nullptr) return;
  std::uint32_t number = 0;
  std::memcpy(&number, &answer[kNumber], sizeof number);
  number = numbering(number, answer_count);
  std::memcpy(&answer[kNumber], &number, sizeof number);
}

void Script::SendSpoiled(Bytes bytes) {
  spoilt = std::exchange(spoiling, std::nullopt);
  if (spoilt->change != nullptr) {
    const std::size_t size = bytes.size();
    bytes.resize(kHeaderSize + kSpoiltCapacity);
    bytes.resize(spoilt->change(bytes.data(), size, bytes.size()));
  }
  const std::size_t piece = spoilt->piece != 0 ? spoilt->piece : bytes.size();
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    const std::size_t size = std::min(piece, bytes.size() - at);
    to_read.push_back({ToBytes(View(bytes).subspan(at, size)), at + size < bytes.size()});
  }
}

Script& TheScript() {
  static Script script;
  return script;
}

}  // namespace
}  // namespace scripted

using scripted::Call;
using scripted::Function;
using scripted::TheScript;

extern "C" {

ZK_VISA_EXPORT scripted::Control* ScriptedVisaControl() { return &TheScript(); }

ViStatus viOpenDefaultRM(ViSession* manager) {
  return TheScript().Run({Function::kOpenDefaultRM}, [&](Call&) {
    *manager = scripted::kManagerSession;
    return VI_SUCCESS;
  });
}
ViStatus viOpen(ViSession, const char* name, ViAccessMode mode, ViUInt32 timeout,
                ViSession* session) {
  const Bytes bytes(name, name + std::strlen(name));
  return TheScript().Run({Function::kOpen, 0, std::uint64_t{mode} << 16 | timeout, 0, bytes},
                         [&](Call& call) {
                           const ViStatus result = TheScript().Open(*session);
                           call.session = *session;
                           return result;
                         });
}
ViStatus viClose(ViObject object) {
  return TheScript().Run({Function::kClose, object}, [&](Call&) {
    TheScript().sessions.erase(object);
    return VI_SUCCESS;
  });
}
ViStatus viSetAttribute(ViObject object, ViAttr attribute, ViAttrState value) {
  return TheScript().Run({Function::kSetAttribute, object, value}, [&](Call&) {
    if (attribute != VI_ATTR_TMO_VALUE) return VI_ERROR_NSUP_ATTR;
    TheScript().timeout = static_cast<std::uint32_t>(value);
    return VI_SUCCESS;
  });
}
ViStatus viGetAttribute(ViObject object, ViAttr attribute, void* value) {
  return TheScript().Run({Function::kGetAttribute, object}, [&](Call&) {
    if (attribute != VI_ATTR_TMO_VALUE) return VI_ERROR_NSUP_ATTR;
    *static_cast<ViUInt32*>(value) = TheScript().timeout;
    return VI_SUCCESS;
  });
}
ViStatus viRead(ViSession session, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  *returned = 0;
  return TheScript().Run({Function::kRead, session, count}, [&](Call& call) {
    const ViStatus result = TheScript().Read(buffer, count, *returned);
    call.bytes.assign(buffer, buffer + *returned);
    return result;
  });
}
ViStatus viWrite(ViSession session, const ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  *returned = 0;
  return TheScript().Run({Function::kWrite, session, count, 0, scripted::ToBytes({buffer, count})},
                         [&](Call& call) {
                           *returned = count;
                           TheScript().TakeRequests(call.bytes);
                           return VI_SUCCESS;
                         });
}
ViStatus viClear(ViSession session) {
  return TheScript().Run({Function::kClear, session}, [](Call&) { return TheScript().Clear(); });
}
ViStatus viStatusDesc(ViObject object, ViStatus status, char* description) {
  const auto bits = static_cast<std::uint32_t>(status);
  return TheScript().Run({Function::kStatusDesc, object, bits}, [&](Call&) {
    std::snprintf(description, 256, "text of %02X %02X %02X %02X", bits >> 24, bits >> 16 & 0xFF,
                  bits >> 8 & 0xFF, bits & 0xFF);
    return VI_SUCCESS;
  });
}
}
