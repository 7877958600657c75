// Moves framed messages to the instrument and back; knows nothing of what they mean.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

#include "K4NHardWare/DeviceInterface.h"
#include "K4NHardWare/EventProcessor.h"
#include "K4NHardWare/ProtocolMessage.h"
#include "status/Status.h"

/// One per session; owns the VISA session. Used by one thread at a time, without a lock of its own.
class CommandExchanger final : public uIEvent::EventProcessor {
 public:
  explicit CommandExchanger(std::unique_ptr<uDevice::Interface> device);
  ~CommandExchanger();
  CommandExchanger(const CommandExchanger&) = delete;
  CommandExchanger& operator=(const CommandExchanger&) = delete;

  /// Sends the requests and waits for all answers, which replace the requests in place. A data read
  /// that is still pending is dropped first by clearing the session (the instrument restarts its
  /// sweep). Returns 0, a VISA status, or 0xBFFF0037 for an answer that is not a protocol message
  /// or is longer than its buffer. A failed write is not reported: the read that follows fails. The
  /// wait for the rest of a body has no limit; Abandon ends it.
  Status SendMessages(std::span<ProtocolMessage* const> messages);

  /// The resumable exchange of the data reads: sends the request unless one is pending, then takes
  /// what has come. 0xBFFF0015 while the answer is not complete: call again, with the same body
  /// buffer.
  Status StartRead(ProtocolMessage& message);

  /// Rejects the answer just received: it belongs to another request, and the right one may still
  /// come.
  void RejectAnswer() { ++pending_.answers; }
  /// Requests a device clear before the next request.
  void ClearBeforeNext() { clear_first_ = true; }
  /// The session ends: from now on a wait for the rest of a body gives up at its next time-out. May
  /// be called from any thread.
  void Abandon() { abandoned_ = true; }

  [[nodiscard]] uDevice::Interface& device() { return *device_; }

 private:
  /// How much of the awaited answer has been received.
  struct Progress {
    ProtocolMessage::Header header{};
    std::uint32_t header_bytes = 0;
    std::uint32_t body_bytes = 0;
    bool header_received = false;
  };
  /// What the last exchange still waits for.
  struct Pending {
    std::uint32_t answers = 0;  ///< not received yet
    bool is_data_read = false;  ///< received by polling
    Progress progress;          ///< of the first missing answer
  };

  Status GetInStep();
  void Send(ProtocolMessage& message);
  Status ReceiveMessage(ProtocolMessage& message, std::uint32_t number);
  Status PollMessage(ProtocolMessage& message);
  Status ReceiveHeader(ProtocolMessage& message);
  Status ReceiveBodyPart(ProtocolMessage& message);
  bool IsLeftOver(const ProtocolMessage& message, std::uint32_t number);

  std::unique_ptr<uDevice::Interface> device_;
  Pending pending_;
  std::uint32_t unanswered_ = 0;        ///< late answers of earlier exchanges that may still come
  std::uint32_t sequence_ = 0;          ///< the last number used
  bool clear_first_ = false;            ///< clear the device before the next request
  std::uint32_t numbers_repeated_ = 0;  ///< answers in a row with the right sequence number
  bool copy_may_come_ = false;          ///< the last answer may arrive twice
  bool numbers_disproved_ = false;      ///< this instrument's sequence numbers are of no use
  std::atomic<bool> abandoned_ = false;
};
