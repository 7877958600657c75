#include "K4NHardWare/CommandExchanger.h"

#include <algorithm>
#include <utility>

namespace {

/// Answers to earlier requests that are passed over before the instrument is given up.
constexpr std::uint32_t kMostLeftOver = 16;
/// Answers in a row with their requests' numbers, which no instrument gives by chance.
constexpr std::uint32_t kProof = 2;

}  // namespace

CommandExchanger::CommandExchanger(std::unique_ptr<uDevice::Interface> device)
    : device_(std::move(device)) {}

CommandExchanger::~CommandExchanger() = default;

Status CommandExchanger::SendMessages(std::span<ProtocolMessage* const> messages) {
  if (read_pending_) {
    read_pending_ = false;
    header_received_ = false;
    if (const Status cleared = device_->Clear(); cleared != 0) return cleared;
  } else if (out_of_step_) {
    // What is left of the failed exchange must not be taken for an answer. A link that is gone
    // shows in the exchange itself.
    device_->Clear();
  }
  out_of_step_ = true;  // until the last answer is in
  header_offset_ = 0;
  outstanding_ = 0;
  for (ProtocolMessage* message : messages) Send(*message);
  std::uint32_t number = sequence_ - outstanding_;
  for (std::size_t i = 0; outstanding_ != 0 && i < messages.size(); ++i) {
    if (const Status received = ReceiveMessage(*messages[i], ++number); received != 0) {
      return received;
    }
  }
  out_of_step_ = false;
  return status::kOk;
}

Status CommandExchanger::StartRead(ProtocolMessage& message) {
  if (!read_pending_) {
    read_pending_ = true;
    header_offset_ = 0;
    Send(message);
  }
  Status polled;
  try {
    polled = PollMessage(message);
  } catch (...) {
    // Whatever a VISA library throws ends here.
    polled = status::kVisaIo;
  }
  if (polled != status::kVisaTimeout) read_pending_ = false;
  if (polled != status::kVisaTimeout && polled != 0) header_received_ = false;
  return polled;
}

void CommandExchanger::Send(ProtocolMessage& message) {
  message.Finalize(++sequence_);
  ++outstanding_;
  // A broken connection shows up in the read that follows.
  std::uint32_t written = 0;
  device_->Write(message.header(), written);
  device_->Write(message.payload(), written);
}

/// The answer to the request of this number.
Status CommandExchanger::ReceiveMessage(ProtocolMessage& message, std::uint32_t number) {
  for (std::uint32_t left_over = 0; left_over <= kMostLeftOver; ++left_over) {
    if (const Status received = ReceiveHeader(message); received != 0) return received;
    while (body_offset_ != message.length()) {
      // The rest of a body is waited for however long the instrument takes.
      const Status received = ReceiveBodyPart(message);
      if (received != 0 && (received != status::kVisaTimeout || abandoned_)) return received;
    }
    if (IsLeftOver(message, number)) continue;
    --outstanding_;
    return status::kOk;
  }
  return status::kVisaProtocolViolation;
}

/// Whether this answers an earlier request: it came too late, or twice. Only an instrument that is
/// known to repeat the numbers of the requests is told by them.
bool CommandExchanger::IsLeftOver(const ProtocolMessage& message, std::uint32_t number) {
  const std::uint32_t age = number - message.sequence();
  if (age == 0) {
    ++numbers_repeated_;
    return false;
  }
  if (numbers_repeated_ < kProof) numbers_repeated_ = 0;
  return numbers_repeated_ >= kProof && age < number;
}

Status CommandExchanger::PollMessage(ProtocolMessage& message) {
  if (header_received_) {
    message.header() = saved_header_;
  } else {
    // The first bytes may have come with an earlier poll.
    std::copy_n(saved_header_.begin(), header_offset_, message.header().begin());
    const Status received = ReceiveHeader(message);
    saved_header_ = message.header();
    if (received != 0) return received;
    header_received_ = true;
  }
  const Status received = ReceiveBodyPart(message);
  if (received == status::kVisaTimeout) return received;
  if (received == 0 && body_offset_ != message.length()) return status::kVisaTimeout;
  header_received_ = false;
  if (received == 0 && IsLeftOver(message, sequence_)) return status::kVisaTimeout;
  --outstanding_;
  return received;
}

Status CommandExchanger::ReceiveHeader(ProtocolMessage& message) {
  const std::span<std::uint8_t> missing = std::span(message.header()).subspan(header_offset_);
  std::uint32_t count = 0;
  body_offset_ = 0;
  const Status received = device_->Read(missing, count);
  header_offset_ += std::min(count, static_cast<std::uint32_t>(missing.size()));
  if (received == status::kVisaTimeout) return received;
  const bool is_whole = std::exchange(header_offset_, 0) == ProtocolMessage::kHeaderSize;
  if (received != 0) return received;
  if (!is_whole || !message.HasMagic()) return status::kVisaProtocolViolation;
  if (message.length() > message.buffer().size()) {
    // The body must not be taken for the next answer.
    device_->Clear();
    return status::kVisaProtocolViolation;
  }
  return status::kOk;
}

Status CommandExchanger::ReceiveBodyPart(ProtocolMessage& message) {
  if (message.length() > message.buffer().size()) return status::kVisaProtocolViolation;
  const std::size_t remaining = message.length() - body_offset_;
  std::uint32_t count = 0;
  const Status received =
      device_->ReadWithTimeout(message.buffer().subspan(body_offset_, remaining), count);
  body_offset_ += std::min(count, static_cast<std::uint32_t>(remaining));
  // A library that reports success without a byte would be asked for ever.
  if (received == 0 && count == 0 && remaining != 0) return status::kVisaIo;
  return received;
}
