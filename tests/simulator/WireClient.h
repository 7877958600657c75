// A client of the simulated instrument that sends and receives bare bytes.
#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

using ByteText = std::vector<std::uint8_t>;

/// "AA 55 01": bytes as the failure messages show them.
std::string Hex(const ByteText& bytes);
/// Bytes of "AA 55 01".
ByteText FromHex(const std::string& text);

/// A request's 16 bytes of header and its body.
ByteText Request(std::uint16_t command, std::uint8_t count, std::uint8_t type,
                 const ByteText& body = {}, std::uint32_t sequence = 1);

/// Header fields of an answer, and its body.
struct Reply {
  std::uint16_t word = 0;
  std::uint16_t command = 0;
  std::int16_t status = 0;
  std::uint8_t count = 0;
  std::uint8_t type = 0;
  std::uint32_t sequence = 0;
  ByteText body;
};

class WireClient {
 public:
  explicit WireClient(std::uint16_t port);

  void Send(const ByteText& bytes);
  /// What comes within the time, at most so many bytes; fewer when the peer closes or is silent.
  ByteText Receive(std::size_t size, std::chrono::milliseconds time = std::chrono::seconds(5));
  /// One whole answer; a gtest failure and an empty reply when none comes.
  Reply ReceiveReply();
  Reply Exchange(const ByteText& request);
  /// True when nothing comes for so long and the connection stays open.
  bool StaysQuiet(std::chrono::milliseconds time);
  /// True when the peer closes without another byte.
  bool IsClosedByPeer();

 private:
  asio::io_context context_;
  asio::ip::tcp::socket socket_;
};

std::int32_t IntegerAt(const ByteText& bytes, std::size_t offset);
