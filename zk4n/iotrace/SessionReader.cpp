#include "zk4n/iotrace/SessionReader.h"

#include <cstdio>
#include <utility>

#include "simulator/MessageText.h"
#include "zk4n/Quantity.h"

namespace iotrace {
namespace {

/// Answers in a row that carry their requests' numbers before a wrong number tells something: not
/// every instrument repeats them.
constexpr unsigned kProof = 2;

std::string Hexadecimal(unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%04X", value);
  return text;
}

std::string Bytes(std::size_t count) { return std::to_string(count) + " bytes"; }

std::string SecondsText(std::chrono::microseconds time) {
  return zk4n::FormatQuantity(static_cast<double>(time.count()) / 1e6, zk4n::Unit::kSecond, 4);
}

std::string NamedStatus(std::int16_t status) {
  const std::string name(simulator::NameOfStatus(status));
  return simulator::StatusText(status) + (name.empty() ? "" : ", " + name);
}

/// Reads whose answers have a form of their own.
bool IsTextRead(const simulator::Message& request) {
  return simulator::IsFileRead(request) || simulator::IsSerialNumberQuery(request);
}

}  // namespace

void SessionReader::OnWrite(std::size_t line, const TraceLine& call) {
  if (call.Failed()) {
    if (!pending_ || pending_->request) Begin(line, call);
    if (pending_->remarks.empty()) Mark(Problem::kConnection, "viWrite: " + call.status);
    out_.Clear();
    return;
  }
  if (call.moved.value_or(0) == 0) return;
  if (out_.size() == 0) Begin(line, call);
  out_.Feed(call.data, *call.moved);
  if (out_.HidesHeader()) {
    pending_.reset();
    LoseTrack(line);
    return;
  }
  if (!out_.HasHeaderWord()) {
    pending_.reset();
    TellCall(line, call, {Problem::kHeaderWord, Bytes(*call.moved) + " that are no request"});
    out_.Clear();
    return;
  }
  while (std::optional<StreamMessage> request = out_.Next()) {
    if (!pending_ || pending_->request) Begin(line, call);
    TakeRequest(std::move(*request));
  }
}

/// Of a request that comes; one that is still without an answer gets none any more.
void SessionReader::Begin(std::size_t line, const TraceLine& call) {
  GiveUp("before the next request");
  pending_.emplace();
  pending_->line = line;
  pending_->process = process_;
  pending_->session = session_;
  pending_->begin = last_read_ = call.time;
}

void SessionReader::TakeRequest(StreamMessage request) {
  const std::uint32_t number = request.message.sequence;
  if (last_number_ && number != *last_number_ + 1) {
    Mark(Problem::kNumber,
         "request " + std::to_string(number) + " follows request " + std::to_string(*last_number_));
  }
  last_number_ = number;
  pending_->request = std::move(request);
  in_.Clear();
  copy_.reset();
  timeouts_ = 0;
  body_asked_ = out_of_step_ = joined_ = false;
}

void SessionReader::OnRead(std::size_t line, const TraceLine& call) {
  body_asked_ = body_asked_ || in_.Announced();
  copy_.reset();  // a further read: the copy was not taken for the answer
  last_read_ = call.End();
  if (!out_of_step_) {
    in_.Feed(call.data, call.moved.value_or(0));
    TakeBytes(line, call);
  }
  if (call.Failed()) FailRead(line, call);
}

void SessionReader::TakeBytes(std::size_t line, const TraceLine& call) {
  while (std::optional<StreamMessage> answer = in_.Next()) {
    body_asked_ = false;
    TakeAnswer(line, call, std::move(*answer));
  }
  if (in_.HidesHeader()) {
    LoseTrack(line);
  } else if (!in_.HasHeaderWord()) {
    const Remark remark{Problem::kHeaderWord, Hexadecimal(in_.Word()) + " instead of " +
                                                  Hexadecimal(simulator::kHeaderWord)};
    if (pending_ && pending_->request) {
      pending_->remarks.push_back(remark);
      Finish();
    } else if (!joined_) {
      TellCall(line, call, remark);
    }
    in_.Clear();
    out_of_step_ = true;
  }
}

void SessionReader::TakeAnswer(std::size_t line, const TraceLine& call, StreamMessage answer) {
  const std::uint32_t number = answer.message.sequence;
  if (!pending_ || !pending_->request) {
    if (!joined_) {
      TellCall(
          line, call,
          {Problem::kUnpaired, "an answer without a request, number " + std::to_string(number)});
    }
    return;
  }
  const simulator::Message& request = pending_->request->message;
  if (number == request.sequence) {
    ++numbers_repeated_;
  } else if (numbers_repeated_ >= kProof && number != 0 && number < request.sequence) {
    Mark(Problem::kPassedOver,
         "the answer to request " + std::to_string(number) + " comes late, or twice");
    copy_ = std::move(answer);
    return;
  } else {
    if (numbers_repeated_ >= kProof) {
      Mark(Problem::kNumber, "the answer has number " + std::to_string(number));
    }
    numbers_repeated_ = 0;
  }
  if (timeouts_ != 0 && !pending_->IsData()) {
    Mark(Problem::kTimeout, "the answer came after " + std::to_string(timeouts_) + " time-outs");
  }
  CheckAnswer(request, answer);
  pending_->end = call.End();
  pending_->answer = std::move(answer);
  Finish();
}

void SessionReader::CheckAnswer(const simulator::Message& request, const StreamMessage& answer) {
  const simulator::Message& message = answer.message;
  if (message.command != request.command) {
    Mark(Problem::kMismatch, "the answer to command " + std::to_string(message.command));
  }
  if (message.status < 0) {
    Mark(Problem::kRefused, NamedStatus(message.status));
  } else if (request.command == simulator::command::kData) {
    CheckBlock(answer);
  } else if (simulator::ParameterOf(request)) {
    CheckParameter(request, answer);
  }
}

void SessionReader::CheckBlock(const StreamMessage& answer) {
  const auto mark = answer.message.type;
  if (mark != '@' && mark != 'A') {
    Mark(Problem::kMismatch, "format mark " + Hexadecimal(mark) + ", neither @ nor A");
  }
  const std::optional<Block> block = BlockOf(answer);
  if (!block) {
    Mark(Problem::kLength, "a block of " + Bytes(answer.length) + " is not 12 n + 2");
  } else if (block->status.value_or(0) < 0) {
    Mark(Problem::kRefused, "block status " + NamedStatus(*block->status));
  }
}

void SessionReader::CheckParameter(const simulator::Message& request, const StreamMessage& answer) {
  const auto asked = simulator::ParameterOf(request);
  const auto told = simulator::ParameterOf(answer.message);
  if (told && told != asked) {
    Mark(Problem::kMismatch, "the answer to parameter " + std::to_string(*told));
  }
  // A request has an even length: a byte may be added to it.
  const std::size_t length = pending_->request->length;
  if (!IsTextRead(request) && answer.length != length && answer.length + 1 != length) {
    Mark(Problem::kLength,
         "a body of " + Bytes(answer.length) + " instead of " + std::to_string(length));
  }
}

void SessionReader::FailRead(std::size_t line, const TraceLine& call) {
  const bool waits = pending_ && pending_->request;
  if (call.TimedOut()) {
    if (waits) ++timeouts_;
    return;
  }
  const std::string what = "viRead: " + call.status + WhatCame();
  if (pending_) {
    Mark(Problem::kConnection, what);
    Finish();
  } else {
    TellCall(line, call, {Problem::kConnection, what});
  }
  in_.Clear();
  out_of_step_ = true;
}

/// ", 16 of 3022 bytes came"; empty when none did.
std::string SessionReader::WhatCame() const {
  if (in_.size() == 0) return {};
  const std::size_t announced = in_.Announced().value_or(simulator::kHeaderSize);
  return ", " + std::to_string(in_.size()) + " of " + Bytes(announced) + " came";
}

void SessionReader::OnClear() {
  GiveUp("before a clear");
  out_.Clear();
  in_.Clear();
}

void SessionReader::OnClose() { GiveUp("before the session was closed"); }

void SessionReader::OnEndOfTrace() {
  if (pending_ && pending_->request && timeouts_ == 0) {
    pending_->open_end = "the trace ends" + WhatCame();
    Finish();
  }
  GiveUp("before the trace ends");
}

void SessionReader::GiveUp(const char* why) {
  if (!pending_) return;
  if (!pending_->request) {
    if (pending_->remarks.empty()) Mark(Problem::kUnpaired, "half a request");
  } else if (copy_) {
    // No read behind it: it was taken for the answer.
    pending_->end = last_read_;
    pending_->answer = std::move(copy_);
    pending_->remarks.back() = {Problem::kNumber,
                                "taken for the answer, though its number is " +
                                    std::to_string(pending_->answer->message.sequence)};
  } else if (in_.Announced() && !body_asked_) {
    Mark(Problem::kLength, "a body of " + Bytes(*in_.Announced() - simulator::kHeaderSize) +
                               " was announced, and not read");
  } else if (pending_->IsData()) {
    pending_->open_end = "given up after " + SecondsText(last_read_ - pending_->begin) + ", " + why;
    // A sweep may take long, its block comes at once.
    if (in_.size() != 0) Mark(Problem::kTimeout, "the block stopped" + WhatCame());
  } else if (timeouts_ != 0) {
    Mark(Problem::kTimeout,
         "no answer in " + SecondsText(last_read_ - pending_->begin) + WhatCame());
  } else {
    Mark(Problem::kUnpaired, std::string("no answer ") + why + WhatCame());
  }
  Finish();
}

/// A header that the trace does not hold: the messages cannot be told apart any more.
void SessionReader::LoseTrack(std::size_t line) {
  if (!std::exchange(lost_track_, true)) {
    listener_->OnDamaged(line, "the trace's bound cut a header; this session cannot be followed");
  }
  out_.Clear();
  in_.Clear();
  out_of_step_ = true;
}

void SessionReader::Mark(Problem problem, std::string text) {
  pending_->remarks.push_back({problem, std::move(text)});
}

void SessionReader::Finish() {
  const Exchange finished = std::move(*pending_);
  pending_.reset();
  listener_->On(finished);
}

void SessionReader::TellCall(std::size_t line, const TraceLine& call, Remark remark) {
  listener_->On(Call{line, call, {std::move(remark)}});
}

}  // namespace iotrace
