// A client of the simulated instrument that sends and receives bare bytes.
#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <chrono>
#include <cstdint>

#include "simulator/Wire.h"
#include "tests/link/Hex.h"

namespace simulator {

/// A request's 16 bytes of header and its body. It is framed as an answer is.
inline Bytes Request(std::uint16_t command, std::uint8_t count, std::uint8_t type,
                     const Bytes& body = {}, std::uint32_t sequence = 1) {
  return EncodeAnswer({command, -0x8000, count, type, sequence, body});
}

class WireClient {
 public:
  explicit WireClient(std::uint16_t port);

  void Send(const Bytes& bytes);
  /// What comes within the time, at most so many bytes; fewer when the peer closes or is silent.
  Bytes Receive(std::size_t size, std::chrono::milliseconds time = std::chrono::seconds(5));
  /// Status, number and body of one whole answer; a gtest failure when none comes.
  Message ReceiveReply();
  Message Exchange(const Bytes& request);
  /// True when nothing comes for so long and the connection stays open.
  bool StaysQuiet(std::chrono::milliseconds time);
  /// True when the peer closes without another byte.
  bool IsClosedByPeer();

 private:
  asio::io_context context_;
  asio::ip::tcp::socket socket_;
  asio::error_code end_;  ///< of the last Receive; operation_aborted after its time
};

}  // namespace simulator
