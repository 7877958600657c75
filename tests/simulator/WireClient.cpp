#include "tests/simulator/WireClient.h"

#include <gtest/gtest.h>

#include <asio/read.hpp>
#include <asio/write.hpp>

namespace simulator {

WireClient::WireClient(std::uint16_t port) : socket_(context_) {
  socket_.connect({asio::ip::make_address("127.0.0.1"), port});
  socket_.set_option(asio::ip::tcp::no_delay(true));
}

void WireClient::Send(const Bytes& bytes) { asio::write(socket_, asio::buffer(bytes)); }

Bytes WireClient::Receive(std::size_t size, std::chrono::milliseconds time) {
  Bytes bytes(size);
  asio::async_read(socket_, asio::buffer(bytes),
                   [&](const asio::error_code& error, std::size_t count) {
                     end_ = error;
                     bytes.resize(count);
                   });
  context_.restart();
  context_.run_for(time);
  while (!context_.stopped()) {  // a part that has just come lets the read go on once more
    socket_.cancel();
    context_.run_for(std::chrono::milliseconds(1));
  }
  return bytes;
}

Message WireClient::ReceiveReply() {
  const Bytes header = Receive(kHeaderSize);
  Message reply;
  if (header.size() < kHeaderSize) {
    ADD_FAILURE() << "no answer, only: " << ToHex(header);
    return reply;
  }
  EXPECT_EQ(ReadWord(header, 0), kHeaderWord);
  reply.status = static_cast<std::int16_t>(ReadWord(header, 4));
  reply.sequence = ReadDoubleWord(header, 12);
  reply.body = Receive(ReadWord(header, 6));
  EXPECT_EQ(reply.body.size(), ReadWord(header, 6)) << "the body is shorter than announced";
  return reply;
}

Message WireClient::Exchange(const Bytes& request) {
  Send(request);
  return ReceiveReply();
}

bool WireClient::StaysQuiet(std::chrono::milliseconds time) {
  return Receive(1, time).empty() && end_ == asio::error::operation_aborted;
}

bool WireClient::IsClosedByPeer() {
  return Receive(1).empty() && end_ != asio::error::operation_aborted;
}

}  // namespace simulator
