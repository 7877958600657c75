// The scripted VISA library: see ScriptedVisa.h.
#include "tests/link/ScriptedVisa.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "platform/os/Sync.h"
#define ZK_VISA_LIBRARY
#include "visa/Visa.h"

namespace scripted {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kHeaderSize = 16;
constexpr std::size_t kComputedCapacity = 7000;
constexpr std::uint16_t kDataCommand = 6;
constexpr ViSession kManagerSession = 1;

Bytes ToBytes(const std::uint8_t* bytes, std::size_t size) {
  return size == 0 ? Bytes() : Bytes(bytes, bytes + size);
}

struct Call {
  Function function;
  std::uint32_t session;
  std::uint64_t value;
  std::int32_t result;
  Bytes bytes;
};

struct Answer {
  bool raw = false;
  std::int16_t status = 0;
  std::optional<char> format;
  Bytes bytes;
  std::vector<Bytes> later_parts;
  Control::Compute compute = nullptr;
  void* context = nullptr;
};

Answer PlainAnswer(std::int16_t status, Bytes body) {
  Answer answer;
  answer.status = status;
  answer.bytes = std::move(body);
  return answer;
}

Answer RawAnswer(Bytes bytes) {
  Answer answer;
  answer.raw = true;
  answer.bytes = std::move(bytes);
  return answer;
}

struct Rule {
  std::uint16_t command;
  std::uint8_t identifier;
  std::uint8_t type;
  std::int32_t times;
  bool echo;
  Answer answer;
};

/// Bytes on their way to the reader; after `pause` a read stops at their end with one time-out.
struct Part {
  Bytes bytes;
  bool pause = false;
};

class Script final : public Control {
 public:
  void Reset() override;
  void SetResult(Function function, std::int32_t result, std::int32_t times) override;
  void QueueAnswer(std::int16_t status, const std::uint8_t* body, std::size_t size) override;
  void QueueComputed(Compute compute, void* context) override;
  void QueueRaw(const std::uint8_t* bytes, std::size_t size) override;
  void QueueRawPart(const std::uint8_t* bytes, std::size_t size) override;
  void SetRule(std::uint16_t command, std::uint8_t identifier, std::uint8_t type,
               std::int16_t status, bool echo, const std::uint8_t* body, std::size_t size,
               std::int32_t times) override;
  void CompleteData(std::int16_t status, char format, const std::uint8_t* body,
                    std::size_t size) override;
  void SpoilAnswer(const Spoiling& spoiling) override;
  bool LinkIsBack() override;
  std::size_t CallCount() const override;
  bool GetCall(std::size_t index, CallView& call) const override;
  void ClearRecord() override;
  std::size_t OpenSessions() const override;

  // The VISA functions.
  ViStatus OpenDefaultRM(ViSession* manager);
  ViStatus Open(const char* name, ViAccessMode mode, ViUInt32 timeout, ViSession* session);
  ViStatus Close(ViObject object);
  ViStatus SetAttribute(ViObject object, ViAttrState value);
  ViStatus GetAttribute(ViObject object, ViUInt32* value);
  ViStatus Read(ViSession session, ViByte* buffer, ViUInt32 count, ViUInt32* returned);
  ViStatus Write(ViSession session, const ViByte* buffer, ViUInt32 count, ViUInt32* returned);
  ViStatus Clear(ViSession session);
  ViStatus StatusDesc(ViObject object, ViStatus status, char* description);

 private:
  struct ForcedResult {
    std::int32_t result = 0;
    std::int32_t times = 0;
  };

  std::optional<std::int32_t> TakeForced(Function function);
  std::int32_t Record(Function function, std::uint32_t session, std::uint64_t value,
                      std::int32_t result, Bytes bytes = {});
  void TakeRequests();
  void HandleRequest(const Bytes& request);
  const Answer* FindRule(const Bytes& request, bool& echo);
  void Send(const Bytes& request, const Answer& answer);
  void SendSpoiled(Bytes bytes);
  [[nodiscard]] bool IsLost() const {
    return spoilt_ && spoilt_->silences == 0 && spoilt_->then < 0;
  }
  ViStatus ReadNothing(ViByte* buffer, ViUInt32 count, ViUInt32* returned);

  mutable std::mutex mutex_;
  std::array<ForcedResult, static_cast<std::size_t>(Function::kCount)> forced_{};
  std::deque<Answer> answers_;
  std::deque<Answer> blocks_;
  std::vector<Rule> rules_;
  std::vector<std::unique_ptr<Call>> record_;
  std::set<std::uint32_t> sessions_;
  std::uint32_t last_session_ = kManagerSession;
  std::uint32_t timeout_ = 2000;
  Bytes written_;  // of the request that is not complete
  std::deque<Part> to_read_;
  std::optional<Bytes> data_request_;  // that waits for its block
  std::optional<Spoiling> spoiling_;   // of an answer to come
  std::optional<Spoiling> spoilt_;     // what the last one left
};

void Script::Reset() {
  const std::lock_guard lock(mutex_);
  forced_ = {};
  answers_.clear();
  blocks_.clear();
  rules_.clear();
  record_.clear();
  sessions_.clear();
  timeout_ = 2000;
  written_.clear();
  to_read_.clear();
  data_request_.reset();
  spoiling_.reset();
  spoilt_.reset();
}

void Script::SetResult(Function function, std::int32_t result, std::int32_t times) {
  const std::lock_guard lock(mutex_);
  forced_[static_cast<std::size_t>(function)] = {result, times};
}

void Script::QueueAnswer(std::int16_t status, const std::uint8_t* body, std::size_t size) {
  const std::lock_guard lock(mutex_);
  answers_.push_back(PlainAnswer(status, ToBytes(body, size)));
}

void Script::QueueComputed(Compute compute, void* context) {
  const std::lock_guard lock(mutex_);
  Answer answer;
  answer.compute = compute;
  answer.context = context;
  answers_.push_back(std::move(answer));
}

void Script::QueueRaw(const std::uint8_t* bytes, std::size_t size) {
  const std::lock_guard lock(mutex_);
  answers_.push_back(RawAnswer(ToBytes(bytes, size)));
}

void Script::QueueRawPart(const std::uint8_t* bytes, std::size_t size) {
  const std::lock_guard lock(mutex_);
  if (!answers_.empty()) answers_.back().later_parts.push_back(ToBytes(bytes, size));
}

void Script::SetRule(std::uint16_t command, std::uint8_t identifier, std::uint8_t type,
                     std::int16_t status, bool echo, const std::uint8_t* body, std::size_t size,
                     std::int32_t times) {
  const std::lock_guard lock(mutex_);
  // The newest rule counts.
  rules_.insert(rules_.begin(),
                {command, identifier, type, times, echo, PlainAnswer(status, ToBytes(body, size))});
}

void Script::CompleteData(std::int16_t status, char format, const std::uint8_t* body,
                          std::size_t size) {
  const std::lock_guard lock(mutex_);
  Answer block = PlainAnswer(status, ToBytes(body, size));
  block.format = format;
  if (data_request_) {
    Send(*data_request_, block);
    data_request_.reset();
  } else {
    blocks_.push_back(std::move(block));
  }
}

void Script::SpoilAnswer(const Spoiling& spoiling) {
  const std::lock_guard lock(mutex_);
  spoiling_ = spoiling;
}

bool Script::LinkIsBack() {
  const std::lock_guard lock(mutex_);
  const bool has_spoilt = !spoiling_.has_value();
  spoiling_.reset();
  spoilt_.reset();
  return has_spoilt;
}

std::size_t Script::CallCount() const {
  const std::lock_guard lock(mutex_);
  return record_.size();
}

bool Script::GetCall(std::size_t index, CallView& call) const {
  const std::lock_guard lock(mutex_);
  if (index >= record_.size()) return false;
  const Call& made = *record_[index];
  call = {made.function, made.session,      made.value,
          made.result,   made.bytes.data(), made.bytes.size()};
  return true;
}

void Script::ClearRecord() {
  const std::lock_guard lock(mutex_);
  record_.clear();
}

std::size_t Script::OpenSessions() const {
  const std::lock_guard lock(mutex_);
  return sessions_.size();
}

std::optional<std::int32_t> Script::TakeForced(Function function) {
  ForcedResult& forced = forced_[static_cast<std::size_t>(function)];
  if (forced.times == 0) return std::nullopt;
  if (forced.times > 0) --forced.times;
  if (forced.result == kThrow) throw std::runtime_error("scripted");
  return forced.result;
}

std::int32_t Script::Record(Function function, std::uint32_t session, std::uint64_t value,
                            std::int32_t result, Bytes bytes) {
  record_.push_back(
      std::make_unique<Call>(Call{function, session, value, result, std::move(bytes)}));
  return result;
}

ViStatus Script::OpenDefaultRM(ViSession* manager) {
  const std::lock_guard lock(mutex_);
  const ViStatus result = TakeForced(Function::kOpenDefaultRM).value_or(VI_SUCCESS);
  if (result >= 0) *manager = kManagerSession;
  return Record(Function::kOpenDefaultRM, 0, 0, result);
}

ViStatus Script::Open(const char* name, ViAccessMode mode, ViUInt32 timeout, ViSession* session) {
  const std::lock_guard lock(mutex_);
  const ViStatus result = TakeForced(Function::kOpen).value_or(VI_SUCCESS);
  if (result >= 0) {
    *session = ++last_session_;
    spoilt_.reset();
    to_read_.clear();
    sessions_.insert(*session);
  }
  const auto* const text = reinterpret_cast<const std::uint8_t*>(name);
  return Record(Function::kOpen, result >= 0 ? *session : 0, std::uint64_t{mode} << 16 | timeout,
                result, ToBytes(text, std::strlen(name)));
}

ViStatus Script::Close(ViObject object) {
  const std::lock_guard lock(mutex_);
  const ViStatus result = TakeForced(Function::kClose).value_or(VI_SUCCESS);
  sessions_.erase(object);
  return Record(Function::kClose, object, 0, result);
}

ViStatus Script::SetAttribute(ViObject object, ViAttrState value) {
  const std::lock_guard lock(mutex_);
  const ViStatus result = TakeForced(Function::kSetAttribute).value_or(VI_SUCCESS);
  if (result >= 0) timeout_ = static_cast<std::uint32_t>(value);
  return Record(Function::kSetAttribute, object, value, result);
}

ViStatus Script::GetAttribute(ViObject object, ViUInt32* value) {
  const std::lock_guard lock(mutex_);
  const ViStatus result = TakeForced(Function::kGetAttribute).value_or(VI_SUCCESS);
  if (result >= 0) *value = timeout_;
  return Record(Function::kGetAttribute, object, timeout_, result);
}

ViStatus Script::Read(ViSession session, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  const std::lock_guard lock(mutex_);
  *returned = 0;
  if (const auto forced = TakeForced(Function::kRead)) {
    return Record(Function::kRead, session, count, *forced);
  }
  ViStatus result = VI_SUCCESS_MAX_CNT;
  while (*returned < count) {
    if (to_read_.empty()) {
      result = ReadNothing(buffer, count, returned);
      break;
    }
    Part& part = to_read_.front();
    const auto size =
        static_cast<ViUInt32>(std::min<std::size_t>(part.bytes.size(), count - *returned));
    std::copy_n(part.bytes.begin(), size, buffer + *returned);
    part.bytes.erase(part.bytes.begin(), part.bytes.begin() + size);
    *returned += size;
    if (!part.bytes.empty()) continue;
    const bool pause = part.pause;
    to_read_.pop_front();
    if (pause && *returned < count) {
      result = VI_ERROR_TMO;
      break;
    }
  }
  return Record(Function::kRead, session, count, result, ToBytes(buffer, *returned));
}

ViStatus Script::ReadNothing(ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  if (!spoilt_ || spoilt_->then == Spoiling::kGoesOn) return VI_ERROR_TMO;
  if (spoilt_->silences != 0) {
    if (spoilt_->silences != Spoiling::kAlways) --spoilt_->silences;
    os::Sleep(std::chrono::milliseconds(1));  // lest the record grow without end
    return VI_ERROR_TMO;
  }
  if (spoilt_->then != Spoiling::kEndless) return spoilt_->then;
  std::fill(buffer + *returned, buffer + count, ViByte{0x5A});
  *returned = count;
  return VI_SUCCESS_MAX_CNT;
}

ViStatus Script::Write(ViSession session, const ViByte* buffer, ViUInt32 count,
                       ViUInt32* returned) {
  const std::lock_guard lock(mutex_);
  const auto forced = TakeForced(Function::kWrite);
  *returned = forced ? 0 : count;
  const ViStatus result =
      Record(Function::kWrite, session, count, forced.value_or(VI_SUCCESS), ToBytes(buffer, count));
  if (!forced && !IsLost() && count != 0) {
    written_.insert(written_.end(), buffer, buffer + count);
    TakeRequests();
  }
  return result;
}

ViStatus Script::Clear(ViSession session) {
  const std::lock_guard lock(mutex_);
  const ViStatus result =
      TakeForced(Function::kClear).value_or(IsLost() ? spoilt_->then : VI_SUCCESS);
  if (result >= 0) {
    to_read_.clear();
    data_request_.reset();
  }
  return Record(Function::kClear, session, 0, result);
}

ViStatus Script::StatusDesc(ViObject object, ViStatus status, char* description) {
  const std::lock_guard lock(mutex_);
  const ViStatus result = TakeForced(Function::kStatusDesc).value_or(VI_SUCCESS);
  if (result >= 0) {
    const auto bits = static_cast<std::uint32_t>(status);
    const std::array<std::uint8_t, 4> bytes = {
        static_cast<std::uint8_t>(bits >> 24), static_cast<std::uint8_t>(bits >> 16),
        static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits)};
    const std::string text = "text of " + ToHex(bytes);
    std::memcpy(description, text.c_str(), text.size() + 1);
  }
  return Record(Function::kStatusDesc, object, static_cast<std::uint32_t>(status), result);
}

void Script::TakeRequests() {
  while (written_.size() >= kHeaderSize) {
    const std::size_t size = kHeaderSize + static_cast<std::size_t>(written_[6] | written_[7] << 8);
    if (written_.size() < size) return;
    const Bytes request(written_.begin(), written_.begin() + static_cast<std::ptrdiff_t>(size));
    written_.erase(written_.begin(), written_.begin() + static_cast<std::ptrdiff_t>(size));
    HandleRequest(request);
  }
}

void Script::HandleRequest(const Bytes& request) {
  const bool is_data = request[2] == kDataCommand;
  if (!answers_.empty()) {
    Answer answer = std::move(answers_.front());
    answers_.pop_front();
    if (answer.compute != nullptr) {
      answer.bytes.resize(kComputedCapacity);
      answer.bytes.resize(answer.compute(answer.context, request.data(), request.size(),
                                         answer.bytes.data(), answer.bytes.size()));
    }
    Send(request, answer);
    return;
  }
  bool echo = true;
  const Answer* const rule = FindRule(request, echo);
  if (rule == nullptr && is_data) {
    if (blocks_.empty()) {
      data_request_ = request;
      return;
    }
    Send(request, blocks_.front());
    blocks_.pop_front();
    return;
  }
  Answer answer = rule != nullptr ? *rule : Answer{};
  if (echo) answer.bytes.assign(request.begin() + kHeaderSize, request.end());
  Send(request, answer);
}

const Answer* Script::FindRule(const Bytes& request, bool& echo) {
  const std::uint16_t command = request[2];
  const std::uint8_t identifier = request.size() > kHeaderSize ? request[kHeaderSize] : 0;
  const auto rule = std::ranges::find_if(rules_, [&](const Rule& item) {
    return item.times != 0 && item.command == command && item.identifier == identifier &&
           (item.type == 0 || item.type == request[9]);
  });
  if (rule == rules_.end()) return nullptr;
  if (rule->times > 0) --rule->times;
  echo = rule->echo;
  return &rule->answer;
}

void Script::Send(const Bytes& request, const Answer& answer) {
  Bytes bytes;
  if (!answer.raw) {
    bytes.assign(request.begin(), request.begin() + kHeaderSize);
    bytes[4] = static_cast<std::uint8_t>(answer.status);
    bytes[5] = static_cast<std::uint8_t>(answer.status >> 8);
    bytes[6] = static_cast<std::uint8_t>(answer.bytes.size());
    bytes[7] = static_cast<std::uint8_t>(answer.bytes.size() >> 8);
    if (answer.format) bytes[9] = static_cast<std::uint8_t>(*answer.format);
  }
  bytes.insert(bytes.end(), answer.bytes.begin(), answer.bytes.end());
  if (spoiling_ && spoiling_->after-- == 0) {
    SendSpoiled(std::move(bytes));
    return;
  }
  to_read_.push_back({std::move(bytes), !answer.later_parts.empty()});
  for (std::size_t i = 0; i < answer.later_parts.size(); ++i) {
    to_read_.push_back({answer.later_parts[i], i + 1 < answer.later_parts.size()});
  }
}

void Script::SendSpoiled(Bytes bytes) {
  spoilt_ = spoiling_;
  spoiling_.reset();
  if (spoilt_->change != nullptr) {
    const std::size_t size = bytes.size();
    bytes.resize(kHeaderSize + kComputedCapacity);
    bytes.resize(spoilt_->change(bytes.data(), size, bytes.size()));
  }
  const std::size_t piece = spoilt_->piece != 0 ? spoilt_->piece : bytes.size();
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    const std::size_t size = std::min(piece, bytes.size() - at);
    to_read_.push_back({ToBytes(bytes.data() + at, size), at + size < bytes.size()});
  }
}

Script& TheScript() {
  static Script script;
  return script;
}

}  // namespace
}  // namespace scripted

using scripted::TheScript;

extern "C" {

ZK_VISA_EXPORT scripted::Control* ScriptedVisaControl() { return &TheScript(); }

ViStatus viOpenDefaultRM(ViSession* manager) { return TheScript().OpenDefaultRM(manager); }
ViStatus viOpen(ViSession, const char* name, ViAccessMode mode, ViUInt32 timeout,
                ViSession* session) {
  return TheScript().Open(name, mode, timeout, session);
}
ViStatus viClose(ViObject object) { return TheScript().Close(object); }
ViStatus viSetAttribute(ViObject object, ViAttr, ViAttrState value) {
  return TheScript().SetAttribute(object, value);
}
ViStatus viGetAttribute(ViObject object, ViAttr, void* value) {
  return TheScript().GetAttribute(object, static_cast<ViUInt32*>(value));
}
ViStatus viRead(ViSession session, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return TheScript().Read(session, buffer, count, returned);
}
ViStatus viWrite(ViSession session, const ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return TheScript().Write(session, buffer, count, returned);
}
ViStatus viClear(ViSession session) { return TheScript().Clear(session); }
ViStatus viStatusDesc(ViObject object, ViStatus status, char* description) {
  return TheScript().StatusDesc(object, status, description);
}
}
