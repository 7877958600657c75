#include "tests/simulator/WireClient.h"

#include <gtest/gtest.h>

#include <asio/read.hpp>
#include <asio/write.hpp>
#include <cstdio>
#include <sstream>

namespace {

std::uint32_t Little(const ByteText& bytes, std::size_t offset, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i-- > 0;) {
    value = (value << 8) | bytes.at(offset + i);
  }
  return value;
}

void Put(ByteText& bytes, std::uint32_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

}  // namespace

std::string Hex(const ByteText& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02X ", static_cast<unsigned>(byte));
    text += digits;
  }
  if (!text.empty()) {
    text.pop_back();
  }
  return text;
}

ByteText FromHex(const std::string& text) {
  ByteText bytes;
  std::istringstream stream(text);
  for (unsigned value = 0; stream >> std::hex >> value;) {
    bytes.push_back(static_cast<std::uint8_t>(value));
  }
  return bytes;
}

ByteText Request(std::uint16_t command, std::uint8_t count, std::uint8_t type, const ByteText& body,
                 std::uint32_t sequence) {
  ByteText bytes;
  Put(bytes, 0x55AA, 2);
  Put(bytes, command, 2);
  Put(bytes, 0x8000, 2);
  Put(bytes, static_cast<std::uint32_t>(body.size()), 2);
  bytes.push_back(count);
  bytes.push_back(type);
  Put(bytes, 0, 2);
  Put(bytes, sequence, 4);
  bytes.insert(bytes.end(), body.begin(), body.end());
  return bytes;
}

WireClient::WireClient(std::uint16_t port) : socket_(context_) {
  socket_.connect({asio::ip::make_address("127.0.0.1"), port});
  socket_.set_option(asio::ip::tcp::no_delay(true));
}

void WireClient::Send(const ByteText& bytes) { asio::write(socket_, asio::buffer(bytes)); }

ByteText WireClient::Receive(std::size_t size, std::chrono::milliseconds time) {
  ByteText bytes(size);
  std::size_t received = 0;
  bool done = false;
  asio::async_read(socket_, asio::buffer(bytes),
                   [&](const asio::error_code& /*error*/, std::size_t count) {
                     received = count;
                     done = true;
                   });
  context_.restart();
  context_.run_for(time);
  if (!done) {
    socket_.cancel();
    context_.restart();
    context_.run();
  }
  bytes.resize(received);
  return bytes;
}

Reply WireClient::ReceiveReply() {
  const ByteText header = Receive(16);
  Reply reply;
  if (header.size() < 16) {
    ADD_FAILURE() << "no answer, only: " << Hex(header);
    return reply;
  }
  reply.word = static_cast<std::uint16_t>(Little(header, 0, 2));
  reply.command = static_cast<std::uint16_t>(Little(header, 2, 2));
  reply.status = static_cast<std::int16_t>(Little(header, 4, 2));
  reply.count = header[8];
  reply.type = header[9];
  reply.sequence = Little(header, 12, 4);
  reply.body = Receive(Little(header, 6, 2));
  EXPECT_EQ(reply.body.size(), Little(header, 6, 2)) << "the body is shorter than announced";
  return reply;
}

Reply WireClient::Exchange(const ByteText& request) {
  Send(request);
  return ReceiveReply();
}

bool WireClient::StaysQuiet(std::chrono::milliseconds time) {
  std::uint8_t byte = 0;
  bool done = false;
  socket_.async_read_some(asio::buffer(&byte, 1), [&](const asio::error_code& /*error*/,
                                                      std::size_t /*count*/) { done = true; });
  context_.restart();
  context_.run_for(time);
  const bool quiet = !done;
  if (quiet) {
    socket_.cancel();
    context_.restart();
    context_.run();
  }
  return quiet;
}

bool WireClient::IsClosedByPeer() {
  std::uint8_t byte = 0;
  asio::error_code error;
  const std::size_t count = socket_.read_some(asio::buffer(&byte, 1), error);
  return count == 0 && error;
}

std::int32_t IntegerAt(const ByteText& bytes, std::size_t offset) {
  return static_cast<std::int32_t>(Little(bytes, offset, 4));
}
