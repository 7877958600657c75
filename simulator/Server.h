// The instrument's port: takes connections, hands their requests to the instrument, and sends the
// data when a sweep ends. One thread, between Start and Stop.
#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "simulator/Connection.h"
#include "simulator/FaultList.h"
#include "simulator/Instrument.h"
#include "simulator/Options.h"
#include "simulator/RequestLog.h"
#include "simulator/SweepTimer.h"

namespace simulator {

/// What the connections share; `mutex` guards the rest.
struct Bench {
  explicit Bench(const Options& options);

  std::mutex mutex;
  Instrument instrument;
  SweepTimer sweep;
  FaultList faults;
  RequestLog log;
};

using RequestObserver = std::function<void(const RequestRecord&, const InstrumentState&)>;

class Server final : private RequestHandler {
 public:
  /// Listens on `port` (0: any free one) of the options' address; throws std::system_error. The
  /// options and the bench must outlive the server.
  Server(const Options& options, std::uint16_t port, Bench& bench, RequestObserver observer);
  /// Closes everything and waits for the thread.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] std::size_t connection_count() const { return connection_count_; }
  void DropConnections();
  /// The sweep's trigger or settings have changed from outside.
  void SweepChanged();

 private:
  void Listen(std::uint16_t port);
  void Accept();
  void AcceptNext(const asio::error_code& error);
  void OnRequest(Connection& connection, const Message& request) override;
  void OnClosed(Connection& connection) override;
  void Answer(Connection& connection, const Message& request, const std::optional<Fault>& fault);
  void TakeDataRequest(Connection& connection, const Message& request,
                       const std::optional<Fault>& fault);
  void Note(const Connection& connection, const Message& request, const Message* answer,
            const char* fate);
  void Send(Connection& connection, Message answer, const std::optional<Fault>& fault);
  void CloseConnections();
  [[nodiscard]] bool AnybodyWaits() const;
  void ScheduleSweepEnd();
  void DeliverSweep();

  const Options& options_;
  Bench& bench_;
  RequestObserver observer_;
  asio::io_context context_;
  asio::ip::tcp::acceptor acceptor_;
  asio::steady_timer accept_pause_;
  asio::steady_timer sweep_end_;
  std::uint16_t port_ = 0;
  std::uint32_t last_id_ = 0;
  std::vector<std::shared_ptr<Connection>> connections_;
  std::atomic<std::size_t> connection_count_{0};
  std::thread thread_;
};

}  // namespace simulator
