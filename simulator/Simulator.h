// A simulated instrument that listens on a TCP port, for a test, for the demo, or on its own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "simulator/InstrumentState.h"
#include "simulator/Options.h"
#include "simulator/RequestLog.h"

namespace simulator {

/// The instrument is switched on by the constructor and keeps its settings over Stop and Start, as
/// one does whose cable is pulled. It has one thread of its own between Start and Stop. All members
/// may be called from any thread.
class Simulator {
 public:
  using Observer = std::function<void(const RequestRecord&, const InstrumentState&)>;

  /// Throws std::invalid_argument for options that describe no instrument.
  explicit Simulator(const Options& options = {});
  /// Stops.
  ~Simulator();
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  /// Listens. After a Stop, on the port that it had. Throws std::system_error when the address is
  /// not this machine's or the port is taken. Does nothing when it listens already.
  void Start();
  /// Closes the port and every connection, then waits for the thread.
  void Stop();
  /// 0 before the first Start.
  [[nodiscard]] std::uint16_t Port() const;
  /// "TCPIP0::127.0.0.1::PORT::SOCKET"; an IPv6 address stands in brackets.
  [[nodiscard]] std::string ResourceName() const;
  [[nodiscard]] std::size_t ConnectionCount() const;
  /// Closes the connections; the port stays open.
  void DropConnections();

  [[nodiscard]] InstrumentState State() const;
  /// The last requests, oldest first; at most Options::log_capacity.
  [[nodiscard]] std::vector<RequestRecord> Requests() const;
  void ClearRequests();
  /// Called after each request on the simulator's thread; must not call Stop. Set before Start.
  void Observe(Observer observer);

  /// Joins those already there; the first that matches a request strikes.
  void InjectFault(const Fault& fault);
  void ClearFaults();
  /// Requests that faults have struck since the instrument was switched on. It is told before what
  /// comes of the fault can be seen at the other end.
  [[nodiscard]] std::uint64_t StruckRequests() const;

  // --- What happens at the instrument rather than on the wire
  void SetDevice(const DeviceUnderTest& device);
  /// A pulse at the trigger connector: starts the sweep that waits for it, or its next point.
  void FireTrigger();
  void PressRfButton(bool pressed);
  void SetPllLocked(bool locked);
  void SetErgGood(bool good);
  void SetLevelSettled(bool settled);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace simulator
