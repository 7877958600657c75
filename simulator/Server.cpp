#include "simulator/Server.h"

#include <algorithm>
#include <asio/ip/address.hpp>
#include <asio/post.hpp>
#include <utility>

#include "simulator/MessageText.h"

namespace simulator {

namespace {

bool Is(const std::optional<Fault>& fault, FaultKind kind) { return fault && fault->kind == kind; }

}  // namespace

Bench::Bench(const Options& options) : instrument(options), log(options.log_capacity) {
  for (const Fault& fault : options.faults) faults.Add(fault);
  sweep.Restart(instrument.Plan());
}

Server::Server(const Options& options, std::uint16_t port, Bench& bench, RequestObserver observer)
    : options_(options),
      bench_(bench),
      observer_(std::move(observer)),
      acceptor_(context_),
      accept_pause_(context_),
      sweep_end_(context_) {
  Listen(port);
  Accept();
  thread_ = std::thread([this] { context_.run(); });
}

Server::~Server() {
  asio::post(context_, [this] {
    asio::error_code ignored;
    acceptor_.close(ignored);
    sweep_end_.cancel();
    accept_pause_.cancel();
    CloseConnections();
  });
  // With everything closed the context runs out of work.
  thread_.join();
}

void Server::Listen(std::uint16_t port) {
  const asio::ip::tcp::endpoint endpoint(asio::ip::make_address(options_.address), port);
  acceptor_.open(endpoint.protocol());
  // An instrument that comes back finds its port although old connections linger there.
  acceptor_.set_option(asio::socket_base::reuse_address(ZK_SIMULATOR_REUSES_PORT != 0));
  acceptor_.bind(endpoint);
  acceptor_.listen();
  port_ = acceptor_.local_endpoint().port();
}

void Server::Accept() {
  acceptor_.async_accept([this](const asio::error_code& error, asio::ip::tcp::socket socket) {
    if (!acceptor_.is_open()) return;
    if (!error && connections_.size() < options_.max_connections) {
      RequestHandler& handler = *this;
      auto connection = std::make_shared<Connection>(std::move(socket), ++last_id_, handler);
      connections_.push_back(connection);
      connection_count_ = connections_.size();
      {
        const std::lock_guard lock(bench_.mutex);
        bench_.instrument.settings().BeginConnection();
      }
      connection->Start();
    }
    AcceptNext(error);
  });
}

void Server::AcceptNext(const asio::error_code& error) {
  if (!error) {
    Accept();
    return;
  }
  // The machine is out of sockets, say: it has more after a while.
  accept_pause_.expires_after(std::chrono::milliseconds(100));
  accept_pause_.async_wait([this](const asio::error_code& cancelled) {
    if (!cancelled) Accept();
  });
}

void Server::OnRequest(Connection& connection, const Message& request) {
  std::optional<Fault> fault;
  {
    const std::lock_guard lock(bench_.mutex);
    fault = bench_.faults.Take(request.command, ParameterOf(request));
  }
  if (request.command != command::kData) {
    // Whoever asks for something else no longer reads the data that he asked for.
    connection.data_request.reset();
  }
  if (Is(fault, FaultKind::kDrop)) {
    Note(connection, request, nullptr, "dropped");
    connection.Close();
  } else if (Is(fault, FaultKind::kSilence)) {
    Note(connection, request, nullptr, "silence");
  } else if (request.command == command::kData && !Is(fault, FaultKind::kRefuse)) {
    TakeDataRequest(connection, request, fault);
  } else {
    Answer(connection, request, fault);
  }
  ScheduleSweepEnd();
}

void Server::Answer(Connection& connection, const Message& request,
                    const std::optional<Fault>& fault) {
  Message answer;
  if (Is(fault, FaultKind::kRefuse)) {
    answer.command = request.command;
    answer.count = request.count;
    answer.type = request.type;
    answer.sequence = request.sequence;
    answer.status = fault->status;
  } else {
    const std::lock_guard lock(bench_.mutex);
    answer = bench_.instrument.Execute(request);
    if (request.command == command::kWrite) bench_.sweep.Restart(bench_.instrument.Plan());
  }
  Note(connection, request, &answer, "");
  Send(connection, std::move(answer), fault);
}

void Server::TakeDataRequest(Connection& connection, const Message& request,
                             const std::optional<Fault>& fault) {
  connection.data_request = DataRequest{request, fault};
  Note(connection, request, nullptr, "when the sweep ends");
}

void Server::Note(const Connection& connection, const Message& request, const Message* answer,
                  const char* fate) {
  const RequestRecord record = Describe(connection.id(), request, answer, fate);
  InstrumentState state;
  {
    const std::lock_guard lock(bench_.mutex);
    bench_.log.Add(record);
    if (!observer_) return;
    state = bench_.instrument.settings().state();
  }
  observer_(record, state);
}

void Server::Send(Connection& connection, Message answer, const std::optional<Fault>& fault) {
  Outgoing outgoing = ShapeAnswer(std::move(answer), fault);
  outgoing.delay += options_.response_delay;
  connection.Send(std::move(outgoing));
}

void Server::OnClosed(Connection& connection) {
  connection.data_request.reset();
  std::erase_if(connections_, [&](const auto& other) { return other.get() == &connection; });
  connection_count_ = connections_.size();
  ScheduleSweepEnd();
}

void Server::CloseConnections() {
  const std::vector<std::shared_ptr<Connection>> connections = connections_;
  for (const auto& connection : connections) connection->Close();
}

void Server::DropConnections() {
  asio::post(context_, [this] { CloseConnections(); });
}

void Server::SweepChanged() {
  asio::post(context_, [this] { ScheduleSweepEnd(); });
}

bool Server::AnybodyWaits() const {
  return std::any_of(connections_.begin(), connections_.end(),
                     [](const auto& connection) { return connection->data_request.has_value(); });
}

void Server::ScheduleSweepEnd() {
  std::optional<SweepTimer::Clock::time_point> end;
  {
    const std::lock_guard lock(bench_.mutex);
    if (AnybodyWaits()) {
      bench_.sweep.Request(SweepTimer::Clock::now());
      end = bench_.sweep.End();
    } else {
      bench_.sweep.Cancel();
    }
  }
  sweep_end_.cancel();
  if (!end || !acceptor_.is_open()) return;
  sweep_end_.expires_at(*end);
  sweep_end_.async_wait([this](const asio::error_code& error) {
    if (!error) DeliverSweep();
  });
}

void Server::DeliverSweep() {
  // A request may have come between the timer's end and now and changed everything.
  std::vector<std::pair<std::shared_ptr<Connection>, DataRequest>> waiting;
  {
    const std::lock_guard lock(bench_.mutex);
    const auto end = bench_.sweep.End();
    if (!end || *end > SweepTimer::Clock::now()) return;
    bench_.sweep.Delivered();
  }
  for (const auto& connection : connections_) {
    if (connection->data_request) {
      waiting.emplace_back(connection, std::move(*connection->data_request));
      connection->data_request.reset();
    }
  }
  for (auto& [connection, data] : waiting) {
    Message answer;
    {
      const std::lock_guard lock(bench_.mutex);
      answer = bench_.instrument.MeasureSweep(data.request);
    }
    Send(*connection, std::move(answer), data.fault);
  }
}

}  // namespace simulator
