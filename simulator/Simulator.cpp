#include "simulator/Simulator.h"

#include <mutex>
#include <utility>

#include "simulator/Server.h"

namespace simulator {

class Simulator::Impl {
 public:
  explicit Impl(const Options& instrument_options)
      : options(instrument_options), bench(options), port(0) {}

  /// Runs on the instrument itself, then lets the server look at the sweep again.
  template <typename Change>
  void AtTheInstrument(Change change) {
    {
      const std::lock_guard lock(bench.mutex);
      change();
    }
    const std::lock_guard lock(server_mutex);
    if (server) server->SweepChanged();
  }

  const Options options;
  Bench bench;
  Observer observer;
  mutable std::mutex server_mutex;  // guards what follows; taken after no other
  std::unique_ptr<Server> server;
  std::uint16_t port;
};

Simulator::Simulator(const Options& options) {
  Validate(options);
  impl_ = std::make_unique<Impl>(options);
}

Simulator::~Simulator() { Stop(); }

void Simulator::Start() {
  const std::lock_guard lock(impl_->server_mutex);
  if (impl_->server) return;
  const std::uint16_t port = impl_->port != 0 ? impl_->port : impl_->options.port;
  impl_->server = std::make_unique<Server>(impl_->options, port, impl_->bench, impl_->observer);
  impl_->port = impl_->server->port();
}

void Simulator::Stop() {
  // The server's end is waited for without the lock, which its observer may need.
  std::unique_ptr<Server> server;
  {
    const std::lock_guard lock(impl_->server_mutex);
    server = std::move(impl_->server);
  }
}

std::uint16_t Simulator::Port() const {
  const std::lock_guard lock(impl_->server_mutex);
  return impl_->port;
}

std::string Simulator::ResourceName() const {
  // Who listens on all interfaces is reached at this machine's own address. The brackets keep the
  // colons of an address apart from those of the name.
  const std::string& address = impl_->options.address;
  std::string host = address;
  if (address == "0.0.0.0") {
    host = "127.0.0.1";
  } else if (address.find(':') != std::string::npos) {
    host = address == "::" ? "[::1]" : "[" + address + "]";
  }
  return "TCPIP0::" + host + "::" + std::to_string(Port()) + "::SOCKET";
}

std::size_t Simulator::ConnectionCount() const {
  const std::lock_guard lock(impl_->server_mutex);
  return impl_->server ? impl_->server->connection_count() : 0;
}

void Simulator::DropConnections() {
  const std::lock_guard lock(impl_->server_mutex);
  if (impl_->server) impl_->server->DropConnections();
}

InstrumentState Simulator::State() const {
  const std::lock_guard lock(impl_->bench.mutex);
  return impl_->bench.instrument.settings().state();
}

std::vector<RequestRecord> Simulator::Requests() const {
  const std::lock_guard lock(impl_->bench.mutex);
  return impl_->bench.log.Records();
}

void Simulator::ClearRequests() {
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.log.Clear();
}

void Simulator::Observe(Observer observer) { impl_->observer = std::move(observer); }

void Simulator::InjectFault(const Fault& fault) {
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.faults.Add(fault);
}

void Simulator::ClearFaults() {
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.faults.Clear();
}

std::uint64_t Simulator::StruckRequests() const {
  const std::lock_guard lock(impl_->bench.mutex);
  return impl_->bench.faults.struck();
}

void Simulator::SetDevice(const DeviceUnderTest& device) {
  Options options = impl_->options;
  options.device = device;
  Validate(options);
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.instrument.signal_path().set_device(device);
}

void Simulator::FireTrigger() {
  impl_->AtTheInstrument([this] { impl_->bench.sweep.Trigger(SweepTimer::Clock::now()); });
}

void Simulator::PressRfButton(bool pressed) {
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.instrument.settings().state().rf_button = pressed;
}

void Simulator::SetPllLocked(bool locked) {
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.instrument.settings().state().pll_locked = locked;
}

void Simulator::SetErgGood(bool good) {
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.instrument.settings().state().erg_good = good;
}

void Simulator::SetLevelSettled(bool settled) {
  const std::lock_guard lock(impl_->bench.mutex);
  impl_->bench.instrument.settings().state().level_settled = settled;
}

}  // namespace simulator
