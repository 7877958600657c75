// One TCP connection, on the system's own calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "visa/Address.h"
#include "visa/Deadline.h"
#include "visa/Visa.h"

namespace zevisa {

/// What one transfer came to. Bytes may have been sent also when it failed; a count of received
/// bytes above 0 goes with VI_SUCCESS only.
struct Transfer {
  ViStatus status;  ///< VI_SUCCESS, VI_ERROR_TMO, _CONN_LOST, _ABORT or _IO
  std::size_t count;
};

/// Receiving and sending may go on at the same time; each of them is one thread's at a time. The
/// operations that end waits, and the options, may be called from any thread.
class Socket {
 public:
  /// Throws std::bad_alloc when the system has no handles left.
  Socket();
  ~Socket();
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  /// VI_SUCCESS; VI_ERROR_RSRC_NFOUND when refused or unreachable; VI_ERROR_TMO. May be tried
  /// again. The connection sends small messages without delay.
  ViStatus Connect(const Address& address, Deadline deadline);

  /// Takes what has arrived, as far as it fits; waits when nothing has. A peer that closed the
  /// connection is VI_ERROR_CONN_LOST, after everything it sent was received.
  Transfer Receive(std::span<std::uint8_t> bytes, Deadline& deadline);
  /// Hands over as much as the system takes; waits when it takes nothing.
  Transfer Send(std::span<const std::uint8_t> bytes, Deadline& deadline);

  /// Ends the waits of other threads with VI_ERROR_ABORT: those in progress, or (Close) all to come
  /// too.
  void Abort();
  void Close();

  bool SetNoDelay(bool on);
  bool SetKeepAlive(bool on);
  /// Switches it on with these times, in seconds, and this number of unanswered probes: a peer that
  /// has vanished is then VI_ERROR_CONN_LOST for who waits. Where the system has a number of its
  /// own, that one counts.
  bool KeepAlive(std::uint32_t idle, std::uint32_t interval, std::uint32_t probes);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace zevisa
