#include "simulator/Connection.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/write.hpp>
#include <utility>

namespace simulator {

namespace {

// Answers that may wait for a client that does not read before its requests wait in turn.
constexpr std::size_t kMaxOutgoing = 16;

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, std::uint32_t id, RequestHandler& handler)
    : socket_(std::move(socket)), id_(id), handler_(handler), timer_(socket_.get_executor()) {}

void Connection::Start() {
  // Headers and short answers must not wait for an acknowledgement; a socket that refuses works.
  asio::error_code ignored;
  socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
  Read();
}

void Connection::Close() {
  if (!open_) return;
  open_ = false;
  asio::error_code ignored;
  socket_.shutdown(asio::ip::tcp::socket::shutdown_both, ignored);
  socket_.close(ignored);
  timer_.cancel();
  handler_.OnClosed(*this);
}

void Connection::Read() {
  if (!open_ || reading_) return;
  reading_ = true;
  socket_.async_read_some(
      asio::buffer(received_),
      [self = shared_from_this()](const asio::error_code& error, std::size_t size) {
        self->reading_ = false;
        if (error) {
          self->Close();
          return;
        }
        self->parser_.Feed(std::span(self->received_).first(size));
        self->TakeRequests();
      });
}

void Connection::TakeRequests() {
  while (open_ && outgoing_.size() < kMaxOutgoing) {
    const std::optional<Message> request = parser_.Next();
    if (!request) {
      Read();
      return;
    }
    handler_.OnRequest(*this, *request);
  }
}

void Connection::Send(Outgoing outgoing) {
  if (!open_) return;
  outgoing_.push_back(std::move(outgoing));
  if (outgoing_.size() == 1) Write();
}

void Connection::Write() {
  sent_ = 0;
  if (outgoing_.front().delay.count() > 0) {
    Wait(outgoing_.front().delay, &Connection::WritePiece);
  } else {
    WritePiece();
  }
}

void Connection::WritePiece() {
  const Outgoing& current = outgoing_.front();
  const std::size_t wanted = sent_ == 0 ? current.first : current.piece;
  const std::size_t size = std::min(wanted, current.bytes.size() - sent_);
  asio::async_write(socket_, asio::buffer(current.bytes.data() + sent_, size),
                    [self = shared_from_this()](const asio::error_code& error, std::size_t count) {
                      if (error) {
                        self->Close();
                      } else {
                        self->OnWritten(count);
                      }
                    });
}

void Connection::OnWritten(std::size_t size) {
  sent_ += size;
  if (sent_ < outgoing_.front().bytes.size()) {
    Wait(outgoing_.front().pause, &Connection::WritePiece);
    return;
  }
  outgoing_.pop_front();
  if (!outgoing_.empty()) Write();
  if (!reading_) TakeRequests();
}

void Connection::Wait(std::chrono::milliseconds time, void (Connection::*then)()) {
  timer_.expires_after(time);
  timer_.async_wait([self = shared_from_this(), then](const asio::error_code& error) {
    if (!error && self->open_) ((*self).*then)();
  });
}

}  // namespace simulator
