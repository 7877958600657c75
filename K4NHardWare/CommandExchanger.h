// Moves framed messages to the instrument and back; knows nothing of what they mean.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "K4NHardWare/DeviceInterface.h"
#include "K4NHardWare/EventProcessor.h"
#include "K4NHardWare/ProtocolMessage.h"
#include "measurement/Status.h"

/// One per session; owns the VISA session. Used by one thread at a time, without a lock of its own.
class CommandExchanger final : public uIEvent::EventProcessor {
 public:
  explicit CommandExchanger(std::unique_ptr<uDevice::Interface> device);
  ~CommandExchanger();
  CommandExchanger(const CommandExchanger&) = delete;
  CommandExchanger& operator=(const CommandExchanger&) = delete;

  /// Sends the requests and waits for all answers, which replace the requests in place. A data read
  /// that is still pending is dropped first by clearing the session (the instrument restarts its
  /// sweep). Returns 0, a VISA status, or 0xBFFF0037 for an answer that is no message of the
  /// protocol or longer than its buffer. Failed writes show up in the read that follows. A body
  /// whose rest never comes is waited for without limit.
  Status SendMessages(std::span<ProtocolMessage* const> messages);

  /// The resumable exchange of the data reads: sends the request unless one is pending, then takes
  /// what has come. 0xBFFF0015 while the answer is not complete: call again, with the same body
  /// buffer.
  Status StartRead(ProtocolMessage& message);

  [[nodiscard]] uDevice::Interface& device() { return *device_; }

 private:
  void Send(ProtocolMessage& message);
  Status ReceiveMessage(ProtocolMessage& message);
  Status PollMessage(ProtocolMessage& message);
  Status ReceiveHeader(ProtocolMessage& message);
  Status ReceiveBodyPart(ProtocolMessage& message);

  std::unique_ptr<uDevice::Interface> device_;
  std::uint32_t outstanding_ = 0;  // requests whose answers have not been read
  std::uint32_t sequence_ = 0;     // the last number used
  bool read_pending_ = false;
  bool header_received_ = false;
  std::uint32_t body_offset_ = 0;  // bytes of the pending answer's body that are in
  ProtocolMessage::Header saved_header_{};
};
