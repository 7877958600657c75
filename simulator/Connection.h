// One client's connection: requests in, answers out, in order.
#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "simulator/FaultList.h"
#include "simulator/Wire.h"

namespace simulator {

class Connection;

/// Who takes the requests; must outlive the connections.
class RequestHandler {
 public:
  virtual void OnRequest(Connection& connection, const Message& request) = 0;
  virtual void OnClosed(Connection& connection) = 0;

 protected:
  ~RequestHandler() = default;
};

/// A request for data that waits for the end of the sweep.
struct DataRequest {
  Message request;
  std::optional<Fault> fault;  ///< that its answer will meet
};

/// Lives as long as it is open or an operation of its is under way. Runs on the thread of its
/// socket's context.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(asio::ip::tcp::socket socket, std::uint32_t id, RequestHandler& handler);

  void Start();
  /// Sends behind what is on its way. Requests wait while a client does not take its answers.
  void Send(Outgoing outgoing);
  /// Tells the handler, once.
  void Close();

  [[nodiscard]] std::uint32_t id() const { return id_; }

  /// The handler's: what this client waits for.
  std::optional<DataRequest> data_request;

 private:
  void Read();
  void TakeRequests();
  void Write();
  void WritePiece();
  void OnWritten(std::size_t size);
  void Wait(std::chrono::milliseconds time, void (Connection::*then)());

  asio::ip::tcp::socket socket_;
  std::uint32_t id_;
  RequestHandler& handler_;
  RequestParser parser_;
  std::array<std::uint8_t, 16384> received_{};
  bool reading_ = false;
  std::deque<Outgoing> outgoing_;  ///< the first is being sent
  std::size_t sent_ = 0;           ///< bytes of the first
  asio::steady_timer timer_;       ///< of delays and pauses
  bool open_ = true;
};

}  // namespace simulator
