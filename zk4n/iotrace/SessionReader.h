// One session of a trace: its calls put together to exchanges.
#pragma once

#include <cstdint>
#include <optional>

#include "zk4n/iotrace/Exchange.h"

namespace iotrace {

/// Follows the bytes of both directions, however the calls cut them.
class SessionReader {
 public:
  /// `from_open`: the trace shows the session's opening, so that nothing of it is missing.
  SessionReader(std::uint64_t process, std::uint64_t session, bool from_open, Listener& listener)
      : process_(process), session_(session), joined_(!from_open), listener_(&listener) {}

  void OnWrite(std::size_t line, const TraceLine& call);
  void OnRead(std::size_t line, const TraceLine& call);
  /// What came is thrown away; what was asked for is not waited for any more.
  void OnClear();
  void OnClose();
  void OnEndOfTrace();

 private:
  void Begin(std::size_t line, const TraceLine& call);
  void TakeRequest(StreamMessage request);
  void TakeBytes(std::size_t line, const TraceLine& call);
  void TakeAnswer(std::size_t line, const TraceLine& call, StreamMessage answer);
  void CheckAnswer(const simulator::Message& request, const StreamMessage& answer);
  void CheckBlock(const StreamMessage& answer);
  void CheckParameter(const simulator::Message& request, const StreamMessage& answer);
  void FailRead(std::size_t line, const TraceLine& call);
  [[nodiscard]] std::string WhatCame() const;
  void GiveUp(const char* why);
  void LoseTrack(std::size_t line);
  void Mark(Problem problem, std::string text);
  void Finish();
  void TellCall(std::size_t line, const TraceLine& call, Remark remark);

  std::uint64_t process_;
  std::uint64_t session_;
  bool joined_;  ///< in its middle: the first answer may belong to a request before the trace
  Listener* listener_;

  MessageStream out_;
  MessageStream in_;
  std::optional<Exchange> pending_;
  TimePoint last_read_;                ///< its end, of the pending exchange; else its beginning
  unsigned timeouts_ = 0;              ///< of the pending exchange
  bool body_asked_ = false;            ///< since the header of its answer came
  bool out_of_step_ = false;           ///< what is read is dropped up to the next request
  bool lost_track_ = false;            ///< told once
  std::optional<StreamMessage> copy_;  ///< passed over last, for the pending exchange
  std::optional<std::uint32_t> last_number_;
  unsigned numbers_repeated_ = 0;  ///< answers in a row that carried their requests' numbers
};

}  // namespace iotrace
