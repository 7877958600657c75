#include "visa/Socket.h"

#include <SystemSockets.h>
#include <windows.h>
// After winsock2.h.
#include <mstcpip.h>

#include <array>
#include <new>

#include "visa/WaitGate.h"

namespace zevisa {
namespace {

/// A manual-reset event.
class Event {
 public:
  Event() : handle_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    if (handle_ == nullptr) throw std::bad_alloc();
  }
  ~Event() { CloseHandle(handle_); }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  void Signal() const { SetEvent(handle_); }
  void Reset() const { ResetEvent(handle_); }
  [[nodiscard]] HANDLE Get() const { return handle_; }

 private:
  HANDLE handle_;
};

struct Direction {
  WaitGate<Event> gate;
  Event completion;
};

ViStatus StatusOf(DWORD error) {
  switch (error) {
    case WSAECONNRESET:
    case WSAECONNABORTED:
    case WSAENETRESET:
    case WSAENOTCONN:
    case WSAESHUTDOWN:
    case WSAEDISCON:
    case WSAETIMEDOUT:  // keep-alive or retransmission gave the peer up
    case WSAEHOSTUNREACH:
    case WSAENETUNREACH:
    case WSAENETDOWN:
    case ERROR_NETNAME_DELETED:
    case ERROR_CONNECTION_ABORTED:
      return VI_ERROR_CONN_LOST;
    default:
      return VI_ERROR_IO;
  }
}

/// Waits until the transfer is complete or the gate is opened from outside.
ViStatus WaitComplete(Direction& direction, Deadline& deadline) {
  for (;;) {
    const int remaining = deadline.Remaining();
    if (remaining == 0) return VI_ERROR_TMO;
    if (!direction.gate.Enter()) return VI_ERROR_ABORT;
    const std::array<HANDLE, 2> handles = {direction.completion.Get(),
                                           direction.gate.wakeup().Get()};
    const DWORD woken =
        WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE,
                               remaining < 0 ? INFINITE : static_cast<DWORD>(remaining));
    if (!direction.gate.Leave()) return VI_ERROR_ABORT;
    if (woken == WAIT_OBJECT_0) return VI_SUCCESS;
    if (woken == WAIT_FAILED) return VI_ERROR_IO;
  }
}

/// Ends a transfer that the system has begun; its buffer is the caller's again afterwards. What was
/// transferred before a time-out or an abort counts: bytes that were sent have gone, those received
/// complete the transfer.
Transfer Finish(SOCKET handle, OVERLAPPED& overlapped, Direction& direction, Deadline& deadline) {
  const ViStatus waited = WaitComplete(direction, deadline);
  if (waited != VI_SUCCESS) CancelIoEx(reinterpret_cast<HANDLE>(handle), &overlapped);
  DWORD count = 0;
  DWORD flags = 0;
  const bool done = WSAGetOverlappedResult(handle, &overlapped, &count, TRUE, &flags) != FALSE;
  if (done) return {count > 0 ? VI_SUCCESS : VI_ERROR_CONN_LOST, count};
  if (waited != VI_SUCCESS) return {waited, count};
  return {StatusOf(static_cast<DWORD>(WSAGetLastError())), count};
}

bool SetFlag(SOCKET handle, int level, int option, bool on) {
  const BOOL value = on ? TRUE : FALSE;
  return setsockopt(handle, level, option, reinterpret_cast<const char*>(&value), sizeof value) ==
         0;
}

/// Waits for the end of a connection attempt. Failure is told by the third set alone.
ViStatus WaitConnected(SOCKET handle, Deadline& deadline) {
  fd_set connected;
  fd_set failed;
  FD_ZERO(&connected);
  FD_ZERO(&failed);
  FD_SET(handle, &connected);
  FD_SET(handle, &failed);
  const int remaining = deadline.Remaining();
  timeval limit = {remaining / 1000, remaining % 1000 * 1000};
  const int ready = select(0, nullptr, &connected, &failed, remaining < 0 ? nullptr : &limit);
  if (ready == 0) return VI_ERROR_TMO;
  if (ready < 0) return VI_ERROR_RSRC_NFOUND;
  if (!FD_ISSET(handle, &failed)) return VI_SUCCESS;
  int error = 0;
  int size = sizeof error;
  getsockopt(handle, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size);
  return error == WSAETIMEDOUT ? VI_ERROR_TMO : VI_ERROR_RSRC_NFOUND;
}

}  // namespace

struct Socket::Impl {
  ~Impl() { Reset(INVALID_SOCKET); }
  void Reset(SOCKET new_handle) {
    if (handle != INVALID_SOCKET) closesocket(handle);
    handle = new_handle;
  }
  SOCKET handle = INVALID_SOCKET;
  Direction receiving;
  Direction sending;
};

Socket::Socket() : impl_(std::make_unique<Impl>()) {}

Socket::~Socket() = default;

ViStatus Socket::Connect(const Address& address, Deadline deadline) {
  impl_->Reset(WSASocketW(address.family, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                          WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
  const SOCKET handle = impl_->handle;
  if (handle == INVALID_SOCKET) {
    return WSAGetLastError() == WSAEMFILE ? VI_ERROR_ALLOC : VI_ERROR_RSRC_NFOUND;
  }
  SetNoDelay(true);
  u_long non_blocking = 1;
  ioctlsocket(handle, FIONBIO, &non_blocking);
  if (connect(handle, reinterpret_cast<const sockaddr*>(address.bytes.data()),
              static_cast<int>(address.length)) != 0) {
    if (WSAGetLastError() != WSAEWOULDBLOCK) return VI_ERROR_RSRC_NFOUND;
    const ViStatus waited = WaitConnected(handle, deadline);
    if (waited != VI_SUCCESS) return waited;
  }
  // Overlapped transfers wait only on a socket that blocks.
  non_blocking = 0;
  ioctlsocket(handle, FIONBIO, &non_blocking);
  return VI_SUCCESS;
}

// Where data is there, or room, the one call completes at once.
Transfer Socket::Receive(std::span<std::uint8_t> bytes, Deadline& deadline) {
  WSABUF buffer = {static_cast<ULONG>(bytes.size()), reinterpret_cast<char*>(bytes.data())};
  OVERLAPPED overlapped{};
  overlapped.hEvent = impl_->receiving.completion.Get();
  DWORD count = 0;
  DWORD flags = 0;
  if (WSARecv(impl_->handle, &buffer, 1, &count, &flags, &overlapped, nullptr) == 0) {
    return {count > 0 ? VI_SUCCESS : VI_ERROR_CONN_LOST, count};
  }
  const auto error = static_cast<DWORD>(WSAGetLastError());
  if (error != WSA_IO_PENDING) return {StatusOf(error), 0};
  return Finish(impl_->handle, overlapped, impl_->receiving, deadline);
}

Transfer Socket::Send(std::span<const std::uint8_t> bytes, Deadline& deadline) {
  // The system does not write to what it sends.
  WSABUF buffer = {static_cast<ULONG>(bytes.size()),
                   reinterpret_cast<char*>(const_cast<std::uint8_t*>(bytes.data()))};
  OVERLAPPED overlapped{};
  overlapped.hEvent = impl_->sending.completion.Get();
  DWORD count = 0;
  if (WSASend(impl_->handle, &buffer, 1, &count, 0, &overlapped, nullptr) == 0) {
    return {VI_SUCCESS, count};
  }
  const auto error = static_cast<DWORD>(WSAGetLastError());
  if (error != WSA_IO_PENDING) return {StatusOf(error), 0};
  return Finish(impl_->handle, overlapped, impl_->sending, deadline);
}

void Socket::Abort() {
  impl_->receiving.gate.Abort();
  impl_->sending.gate.Abort();
}

void Socket::Close() {
  impl_->receiving.gate.Close();
  impl_->sending.gate.Close();
}

bool Socket::SetNoDelay(bool on) { return SetFlag(impl_->handle, IPPROTO_TCP, TCP_NODELAY, on); }

bool Socket::SetKeepAlive(bool on) { return SetFlag(impl_->handle, SOL_SOCKET, SO_KEEPALIVE, on); }

bool Socket::KeepAlive(std::uint32_t idle, std::uint32_t interval, std::uint32_t probes) {
  // Known since Windows 10 1703; before, the system sends ten probes.
  constexpr int kProbes = 16;  // TCP_KEEPCNT
  const auto count = static_cast<DWORD>(probes);
  setsockopt(impl_->handle, IPPROTO_TCP, kProbes, reinterpret_cast<const char*>(&count),
             sizeof count);
  tcp_keepalive times = {1, idle * 1000, interval * 1000};
  DWORD none = 0;
  return WSAIoctl(impl_->handle, SIO_KEEPALIVE_VALS, &times, sizeof times, nullptr, 0, &none,
                  nullptr, nullptr) == 0;
}

}  // namespace zevisa
