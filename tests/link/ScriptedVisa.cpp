#define ZK_VISA_LIBRARY
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
#include <thread>
#include <utility>

namespace scripted {
namespace {

constexpr std::size_t kHeaderSize = 16;
constexpr std::size_t kSpoiltSize = 7016;
constexpr std::uint16_t kDataCommand = 6;

Bytes ToBytes(Visa::View bytes) { return {bytes.begin(), bytes.end()}; }

struct ForcedResult {
  std::int32_t result = 0;
  std::int32_t times = 0;
};

struct PlannedAnswer {
  std::uint16_t status = 0;
  std::optional<Bytes> body = {};  // none: the request's own
  bool is_raw = false;             // the body is all
  std::optional<char> format = {};
};

struct StandingAnswer {
  std::uint16_t command;
  std::uint8_t id;
  std::uint8_t type;
  std::int32_t times;
  PlannedAnswer answer;
};

/// The script as it stands, and what has come of it.
struct Script {
  std::array<ForcedResult, static_cast<std::size_t>(Function::kCount)> forced{};
  std::deque<PlannedAnswer> answers;
  std::deque<PlannedAnswer> blocks;
  std::deque<StandingAnswer> rules;  // the newest first
  std::deque<Call> record;
  std::set<ViSession> sessions;
  ViUInt32 timeout = 2000;
  Bytes written;                              // of the request that is not complete
  std::deque<std::optional<ViByte>> to_read;  // none: a pause, at which a read ends in a time-out
  std::optional<Bytes> data_request;          // that waits for its block
  Numbering* numbering = [](std::uint32_t request, std::uint32_t) { return request; };
  std::uint32_t answer_count = 0;
  Bytes late;                        // the answer that is held back
  std::optional<Spoiling> spoiling;  // of an answer to come
  std::optional<Spoiling> spoilt;    // what the last one left

  std::optional<ViStatus> TakeForced(Function function);
  ViStatus Read(std::span<ViByte> buffer, ViUInt32& returned);
  ViStatus ReadNothing(std::span<ViByte> buffer, ViUInt32& returned);
  ViStatus Clear();
  void TakeRequests(Visa::View bytes);
  void HandleRequest(const Bytes& request);
  StandingAnswer* FindRule(const Bytes& request);
  void SendBlock();
  void Send(const Bytes& request, const PlannedAnswer& answer);
  Bytes Frame(const Bytes& request, const PlannedAnswer& answer);
  [[nodiscard]] bool IsLost() const { return spoilt && spoilt->silences == 0 && spoilt->then < 0; }
};

std::mutex mutex;
Script script;

/// One call of a VISA function: it does what the test forces, or else `act`, and is recorded.
template <typename Act>
ViStatus Play(Call call, Act act) {
  const std::lock_guard lock(mutex);
  const auto forced = script.TakeForced(call.function);
  const ViStatus result = forced ? *forced : act();
  script.record.push_back(std::move(call));
  return result;
}

std::optional<ViStatus> Script::TakeForced(Function function) {
  ForcedResult& next = forced[static_cast<std::size_t>(function)];
  if (next.times == 0) return std::nullopt;
  if (next.times > 0) --next.times;
  if (next.result == kThrow) throw std::runtime_error("scripted");
  return next.result;
}

ViStatus Script::Read(std::span<ViByte> buffer, ViUInt32& returned) {
  for (; returned < buffer.size(); ++returned) {
    if (to_read.empty()) return ReadNothing(buffer, returned);
    const auto next = to_read.front();
    to_read.pop_front();
    if (!next) return VI_ERROR_TMO;
    buffer[returned] = *next;
  }
  if (!to_read.empty() && !to_read.front()) to_read.pop_front();  // nobody waits for that long
  return VI_SUCCESS_MAX_CNT;
}

ViStatus Script::ReadNothing(std::span<ViByte> buffer, ViUInt32& returned) {
  if (!spoilt || spoilt->then == Spoiling::kGoesOn) return VI_ERROR_TMO;
  if (spoilt->silences != 0) {
    if (spoilt->silences != Spoiling::kAlways) --spoilt->silences;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));  // lest the record grow without end
    return VI_ERROR_TMO;
  }
  if (spoilt->then != Spoiling::kEndless) return spoilt->then;
  std::ranges::fill(buffer.subspan(returned), ViByte{0x5A});
  returned = static_cast<ViUInt32>(buffer.size());
  return VI_SUCCESS_MAX_CNT;
}

ViStatus Script::Clear() {
  if (IsLost()) return spoilt->then;
  to_read.clear();
  data_request.reset();
  return VI_SUCCESS;
}

void Script::TakeRequests(Visa::View bytes) {
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
  } else if (const StandingAnswer* const rule = FindRule(request)) {
    Send(request, rule->answer);
  } else if (request[2] != kDataCommand) {
    Send(request, {});
  } else {
    data_request = request;
    SendBlock();
  }
}

StandingAnswer* Script::FindRule(const Bytes& request) {
  const std::uint8_t id = request.size() > kHeaderSize ? request[kHeaderSize] : 0;
  const auto rule = std::ranges::find_if(rules, [&](const StandingAnswer& item) {
    return item.times != 0 && item.command == request[2] && item.id == id &&
           (item.type == 0 || item.type == request[9]);
  });
  if (rule == rules.end()) return nullptr;
  if (rule->times > 0) --rule->times;
  return &*rule;
}

/// Once there are both: a block, and a request that waits for it.
void Script::SendBlock() {
  if (blocks.empty() || !data_request) return;
  Send(*std::exchange(data_request, std::nullopt), blocks.front());
  blocks.pop_front();
}

void Script::Send(const Bytes& request, const PlannedAnswer& answer) {
  Bytes bytes = Frame(request, answer);
  Spoiling how;
  if (spoiling && spoiling->after-- == 0) {
    spoilt = std::exchange(spoiling, std::nullopt);
    how = *spoilt;
  }
  if (how.change != nullptr) {
    const std::size_t size = bytes.size();
    bytes.resize(kSpoiltSize);
    bytes.resize(how.change(bytes.data(), size));
  }
  if (how.is_late) {
    late = std::move(bytes);
    return;
  }
  to_read.insert(to_read.end(), late.begin(), late.end());
  late.clear();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (how.piece != 0 && i != 0 && i % how.piece == 0) to_read.emplace_back(std::nullopt);
    to_read.emplace_back(bytes[i]);
  }
}

/// The bytes of an answer, in little-endian words as they are here.
Bytes Script::Frame(const Bytes& request, const PlannedAnswer& answer) {
  const auto body_begin = request.begin() + kHeaderSize;
  Bytes body = answer.body.value_or(Bytes(body_begin, request.end()));
  if (answer.is_raw) return body;
  Bytes bytes(request.begin(), body_begin);
  const auto size = static_cast<std::uint16_t>(body.size());
  std::uint32_t number = 0;
  std::memcpy(&number, &bytes[12], sizeof number);
  number = numbering(number, ++answer_count);
  std::memcpy(&bytes[4], &answer.status, sizeof answer.status);
  std::memcpy(&bytes[6], &size, sizeof size);
  if (answer.format) bytes[9] = static_cast<std::uint8_t>(*answer.format);
  std::memcpy(&bytes[12], &number, sizeof number);
  bytes.insert(bytes.end(), body.begin(), body.end());
  return bytes;
}

}  // namespace

void Visa::Reset() {
  const std::lock_guard lock(mutex);
  script = {};
}
void Visa::SetResult(Function function, std::uint32_t result, std::int32_t times) {
  const std::lock_guard lock(mutex);
  script.forced[static_cast<std::size_t>(function)] = {static_cast<ViStatus>(result), times};
}
void Visa::Answer(std::uint16_t status, View body) {
  const std::lock_guard lock(mutex);
  script.answers.push_back({status, ToBytes(body)});
}
void Visa::AnswerRaw(View bytes) {
  const std::lock_guard lock(mutex);
  script.answers.push_back({.body = ToBytes(bytes), .is_raw = true});
}
void Visa::Rule(std::uint16_t command, std::uint8_t id, std::uint16_t status, std::uint8_t type,
                std::int32_t times) {
  const std::lock_guard lock(mutex);
  script.rules.push_front({command, id, type, times, {.status = status}});
}
void Visa::RuleBody(std::uint16_t command, std::uint8_t id, View body, std::uint8_t type,
                    std::int32_t times) {
  const std::lock_guard lock(mutex);
  script.rules.push_front({command, id, type, times, {.body = ToBytes(body)}});
}
void Visa::CompleteData(View body, char format, std::uint16_t status) {
  const std::lock_guard lock(mutex);
  script.blocks.push_back({.status = status, .body = ToBytes(body), .format = format});
  script.SendBlock();
}
void Visa::SetNumbering(Numbering* numbering) {
  const std::lock_guard lock(mutex);
  script.numbering = numbering;
}
void Visa::SpoilAnswer(const Spoiling& spoiling) {
  const std::lock_guard lock(mutex);
  script.spoiling = spoiling;
}
bool Visa::LinkIsBack() {
  const std::lock_guard lock(mutex);
  script.spoilt.reset();
  return !std::exchange(script.spoiling, std::nullopt);
}
std::size_t Visa::OpenSessions() const {
  const std::lock_guard lock(mutex);
  return script.sessions.size();
}
const Call* Visa::CallAt(std::size_t index) const {
  const std::lock_guard lock(mutex);
  return index < script.record.size() ? &script.record[index] : nullptr;
}
void Visa::ClearRecord() {
  const std::lock_guard lock(mutex);
  script.record.clear();
}

}  // namespace scripted

using scripted::Function;
using scripted::Play;
using scripted::script;

extern "C" {

ViStatus viOpenDefaultRM(ViSession* manager) {
  return Play({Function::kOpenDefaultRM}, [&] {
    *manager = 0;
    return VI_SUCCESS;
  });
}
ViStatus viOpen(ViSession, const char* name, ViAccessMode mode, ViUInt32 timeout,
                ViSession* session) {
  static ViSession last_session = 0;  // one that was forgotten may still be closed
  const Bytes bytes(name, name + std::strlen(name));
  return Play({Function::kOpen, std::uint64_t{mode} << 16 | timeout, bytes}, [&] {
    script.spoilt.reset();
    script.to_read.clear();
    script.sessions.insert(*session = ++last_session);
    return VI_SUCCESS;
  });
}
ViStatus viClose(ViObject object) {
  return Play({Function::kClose}, [&] {
    script.sessions.erase(object);
    return VI_SUCCESS;
  });
}
ViStatus viSetAttribute(ViObject, ViAttr attribute, ViAttrState value) {
  return Play({Function::kSetAttribute, value}, [&] {
    if (attribute != VI_ATTR_TMO_VALUE) return VI_ERROR_NSUP_ATTR;
    script.timeout = static_cast<ViUInt32>(value);
    return VI_SUCCESS;
  });
}
ViStatus viGetAttribute(ViObject, ViAttr attribute, void* value) {
  return Play({Function::kGetAttribute}, [&] {
    if (attribute != VI_ATTR_TMO_VALUE) return VI_ERROR_NSUP_ATTR;
    *static_cast<ViUInt32*>(value) = script.timeout;
    return VI_SUCCESS;
  });
}
ViStatus viRead(ViSession, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  *returned = 0;
  return Play({Function::kRead}, [&] { return script.Read({buffer, count}, *returned); });
}
ViStatus viWrite(ViSession, const ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  *returned = 0;
  return Play({Function::kWrite, 0, Bytes(buffer, buffer + count)}, [&] {
    *returned = count;
    script.TakeRequests({buffer, count});
    return VI_SUCCESS;
  });
}
ViStatus viClear(ViSession) {
  return Play({Function::kClear}, [] { return script.Clear(); });
}
ViStatus viStatusDesc(ViObject, ViStatus status, char* description) {
  return Play({Function::kStatusDesc}, [&] {
    const auto bits = static_cast<std::uint32_t>(status);
    std::snprintf(description, 256, "text of %02X %02X %02X %02X", bits >> 24, bits >> 16 & 0xFF,
                  bits >> 8 & 0xFF, bits & 0xFF);
    return VI_SUCCESS;
  });
}
}
