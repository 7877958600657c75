#include "K4NHardWare/CommandExchanger.h"

#include <algorithm>
#include <utility>

namespace {

/// Limit for the count of late answers: a link may fail for months.
constexpr std::uint32_t kMostUnanswered = 16;
/// Sequence numbers are trusted after this many matching answers in a row: one may match by chance.
constexpr std::uint32_t kProof = 2;

}  // namespace

CommandExchanger::CommandExchanger(std::unique_ptr<uDevice::Interface> device)
    : device_(std::move(device)) {}

CommandExchanger::~CommandExchanger() = default;

Status CommandExchanger::SendMessages(std::span<ProtocolMessage* const> messages) {
  if (const Status failed = GetInStep(); failed != Status::kOk) return failed;
  for (ProtocolMessage* message : messages) Send(*message);
  std::uint32_t number = sequence_ - pending_.answers;
  for (std::size_t i = 0; pending_.answers != 0 && i < messages.size(); ++i) {
    if (const Status received = ReceiveMessage(*messages[i], ++number); received != Status::kOk) {
      return received;
    }
  }
  return Status::kOk;
}

Status CommandExchanger::StartRead(ProtocolMessage& message) {
  Status polled;
  try {
    if (!pending_.is_data_read) {
      if (const Status failed = GetInStep(); failed != Status::kOk) return failed;
      pending_.is_data_read = true;
      Send(message);
    }
    polled = PollMessage(message);
  } catch (...) {
    // No exception of a VISA library goes further.
    polled = Status::kVisaIo;
  }
  pending_.is_data_read = polled == Status::kVisaTimeout;
  return polled;
}

/// Called before each request. Clears the device if the last exchange failed or was given up, so
/// that the rest of its answer is not read as the next answer. A failed clear is repeated before
/// the next request. Its status is returned only if a data read was pending; otherwise the exchange
/// that follows shows whether the link is dead.
Status CommandExchanger::GetInStep() {
  const Pending given_up = std::exchange(pending_, {});
  if (given_up.answers == 0 && !clear_first_) return Status::kOk;
  unanswered_ = std::min(unanswered_ + given_up.answers, kMostUnanswered);
  clear_first_ = true;
  const Status cleared = device_->Clear();
  clear_first_ = cleared != Status::kOk;
  return given_up.is_data_read ? cleared : Status::kOk;
}

void CommandExchanger::Send(ProtocolMessage& message) {
  message.Finalize(++sequence_);
  ++pending_.answers;
  // A broken connection fails the read that follows.
  std::uint32_t written = 0;
  Discard(device_->Write(message.header(), written));
  Discard(device_->Write(message.payload(), written));
}

/// Receives the answer to the request with this sequence number.
Status CommandExchanger::ReceiveMessage(ProtocolMessage& message, std::uint32_t number) {
  for (bool passed_over = false;; passed_over = true) {
    pending_.progress = {};
    Status received = ReceiveHeader(message);
    while (received == Status::kOk && pending_.progress.body_bytes != message.length()) {
      // No time limit: the instrument may take any time for the rest of a body.
      received = ReceiveBodyPart(message);
      if (received == Status::kVisaTimeout && !abandoned_) received = Status::kOk;
    }
    // No other answer came, so the one that was dropped was the right one.
    if (passed_over && received == Status::kVisaTimeout) numbers_disproved_ = true;
    if (received != Status::kOk) return received;
    if (!IsLeftOver(message, number)) break;
  }
  --pending_.answers;
  return Status::kOk;
}

/// True for the answer to an earlier request: late, or a duplicate. Not every instrument returns
/// the request's sequence number: some send 0, a count of their own, or fewer bits. So a number is
/// evaluated only if the numbers have matched so far, and only while an answer is missing or to
/// detect a duplicate of the last one.
bool CommandExchanger::IsLeftOver(const ProtocolMessage& message, std::uint32_t number) {
  if (message.sequence() == number) {
    ++numbers_repeated_;
    unanswered_ = 0;  // answers come in the order of their requests
    copy_may_come_ = true;
    return false;
  }
  const bool trusted = numbers_repeated_ >= kProof && !numbers_disproved_;
  if (trusted && copy_may_come_ && message.sequence() == number - 1) {
    copy_may_come_ = false;
    return true;
  }
  if (trusted && unanswered_ != 0) {
    --unanswered_;
    return true;
  }
  // It may still be a late answer. Then the right one follows; the clear keeps it out of the next
  // exchange.
  if (trusted || unanswered_ != 0) clear_first_ = true;
  numbers_repeated_ = 0;
  unanswered_ = 0;
  return false;
}

Status CommandExchanger::PollMessage(ProtocolMessage& message) {
  message.header() = pending_.progress.header;
  if (!pending_.progress.header_received) {
    const Status received = ReceiveHeader(message);
    pending_.progress.header = message.header();
    if (received != Status::kOk) return received;
    pending_.progress.header_received = true;
  }
  if (const Status received = ReceiveBodyPart(message); received != Status::kOk) return received;
  if (pending_.progress.body_bytes != message.length()) return Status::kVisaTimeout;
  pending_.progress = {};
  if (IsLeftOver(message, sequence_)) return Status::kVisaTimeout;
  --pending_.answers;
  return Status::kOk;
}

/// Reads the missing bytes of the header; an earlier poll may have received the first ones.
Status CommandExchanger::ReceiveHeader(ProtocolMessage& message) {
  const std::span<std::uint8_t> missing =
      std::span(message.header()).subspan(pending_.progress.header_bytes);
  std::uint32_t count = 0;
  const Status received = device_->Read(missing, count);
  pending_.progress.header_bytes += std::min(count, static_cast<std::uint32_t>(missing.size()));
  if (received != Status::kOk) return received;
  const bool is_whole = pending_.progress.header_bytes == ProtocolMessage::kHeaderSize;
  if (!is_whole || !message.HasMagic()) return Status::kVisaProtocolViolation;
  return message.length() > message.buffer().size() ? Status::kVisaProtocolViolation : Status::kOk;
}

Status CommandExchanger::ReceiveBodyPart(ProtocolMessage& message) {
  // The buffer may be another one than when the header was checked.
  if (message.length() > message.buffer().size()) return Status::kVisaProtocolViolation;
  const std::size_t remaining = message.length() - pending_.progress.body_bytes;
  std::uint32_t count = 0;
  const Status received = device_->ReadWithTimeout(
      message.buffer().subspan(pending_.progress.body_bytes, remaining), count);
  pending_.progress.body_bytes += std::min(count, static_cast<std::uint32_t>(remaining));
  // A library that reports success with 0 bytes would keep this loop running for ever.
  if (received == Status::kOk && count == 0 && remaining != 0) return Status::kVisaIo;
  return received;
}
