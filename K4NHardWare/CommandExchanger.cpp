#include "K4NHardWare/CommandExchanger.h"

#include <algorithm>
#include <utility>

CommandExchanger::CommandExchanger(std::unique_ptr<uDevice::Interface> device)
    : device_(std::move(device)) {}

CommandExchanger::~CommandExchanger() = default;

Status CommandExchanger::SendMessages(std::span<ProtocolMessage* const> messages) {
  if (read_pending_) {
    read_pending_ = false;
    header_received_ = false;
    if (const Status cleared = device_->Clear(); cleared != 0) return cleared;
  }
  outstanding_ = 0;
  for (ProtocolMessage* message : messages) Send(*message);
  for (std::size_t i = 0; outstanding_ != 0 && i < messages.size(); ++i) {
    if (const Status received = ReceiveMessage(*messages[i]); received != 0) return received;
  }
  return status::kOk;
}

Status CommandExchanger::StartRead(ProtocolMessage& message) {
  if (!read_pending_) {
    read_pending_ = true;
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

Status CommandExchanger::ReceiveMessage(ProtocolMessage& message) {
  if (const Status received = ReceiveHeader(message); received != 0) return received;
  while (body_offset_ != message.length()) {
    // The rest of a body is waited for however long the instrument takes.
    const Status received = ReceiveBodyPart(message);
    if (received != 0 && received != status::kVisaTimeout) return received;
  }
  --outstanding_;
  return status::kOk;
}

Status CommandExchanger::PollMessage(ProtocolMessage& message) {
  if (header_received_) {
    message.header() = saved_header_;
  } else {
    if (const Status received = ReceiveHeader(message); received != 0) return received;
    saved_header_ = message.header();
    header_received_ = true;
  }
  const Status received = ReceiveBodyPart(message);
  if (received == status::kVisaTimeout) return received;
  if (received == 0 && body_offset_ != message.length()) return status::kVisaTimeout;
  header_received_ = false;
  --outstanding_;
  return received;
}

Status CommandExchanger::ReceiveHeader(ProtocolMessage& message) {
  std::uint32_t count = 0;
  body_offset_ = 0;
  if (const Status received = device_->Read(message.header(), count); received != 0) {
    return received;
  }
  if (count != ProtocolMessage::kHeaderSize || !message.HasMagic()) {
    return status::kVisaProtocolViolation;
  }
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
