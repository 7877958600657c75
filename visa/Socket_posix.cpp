#include "visa/Socket.h"

#include <SystemSockets.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <new>
#include <utility>

#include "platform/os/FileDescriptor_posix.h"
#include "visa/WaitGate.h"

namespace zevisa {
namespace {

class Wakeup {
 public:
  Wakeup() : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (event_.Get() < 0) throw std::bad_alloc();
  }
  void Signal() const { eventfd_write(event_.Get(), 1); }
  void Reset() const {
    eventfd_t count = 0;
    eventfd_read(event_.Get(), &count);
  }
  [[nodiscard]] int Get() const { return event_.Get(); }

 private:
  os::FileDescriptor event_;
};

using Gate = WaitGate<Wakeup>;

ViStatus StatusOf(int error) {
  switch (error) {
    case ECONNRESET:
    case EPIPE:
    case ENOTCONN:
    case ECONNABORTED:
    case ETIMEDOUT:  // keep-alive or retransmission gave the peer up
    case EHOSTUNREACH:
    case ENETUNREACH:
    case ENETDOWN:
      return VI_ERROR_CONN_LOST;
    default:
      return VI_ERROR_IO;
  }
}

/// Waits until the socket is ready or the gate is opened from outside.
ViStatus WaitReady(int fd, short events, Gate& gate, Deadline& deadline) {
  for (;;) {
    const int remaining = deadline.Remaining();
    if (remaining == 0) return VI_ERROR_TMO;
    if (!gate.Enter()) return VI_ERROR_ABORT;
    std::array<pollfd, 2> set = {{{fd, events, 0}, {gate.wakeup().Get(), POLLIN, 0}}};
    const int ready = poll(set.data(), set.size(), remaining);
    const int error = errno;
    if (!gate.Leave()) return VI_ERROR_ABORT;
    if (ready > 0) return VI_SUCCESS;
    if (ready < 0 && error != EINTR) return VI_ERROR_IO;
  }
}

bool SetOption(int fd, int level, int option, int value) {
  return setsockopt(fd, level, option, &value, sizeof value) == 0;
}

}  // namespace

struct Socket::Impl {
  os::FileDescriptor fd;
  Gate receiving;
  Gate sending;
};

Socket::Socket() : impl_(std::make_unique<Impl>()) {}

Socket::~Socket() = default;

ViStatus Socket::Connect(const Address& address, Deadline deadline) {
  impl_->fd = os::FileDescriptor(
      socket(address.family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP));
  const int fd = impl_->fd.Get();
  if (fd < 0) return errno == EMFILE || errno == ENFILE ? VI_ERROR_ALLOC : VI_ERROR_RSRC_NFOUND;
  SetNoDelay(true);
  if (connect(fd, reinterpret_cast<const sockaddr*>(address.bytes.data()),
              static_cast<socklen_t>(address.length)) != 0) {
    if (errno != EINPROGRESS && errno != EINTR) return VI_ERROR_RSRC_NFOUND;
    const ViStatus waited = WaitReady(fd, POLLOUT, impl_->sending, deadline);
    if (waited != VI_SUCCESS) return waited;
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
      return error == ETIMEDOUT ? VI_ERROR_TMO : VI_ERROR_RSRC_NFOUND;
    }
  }
  return VI_SUCCESS;
}

// The direct call first: where data is there, or room, it is the only one.
Transfer Socket::Receive(std::span<std::uint8_t> bytes, Deadline& deadline) {
  for (;;) {
    const ssize_t count = recv(impl_->fd.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count > 0) return {VI_SUCCESS, static_cast<std::size_t>(count)};
    if (count == 0) return {VI_ERROR_CONN_LOST, 0};
    if (errno == EINTR) continue;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return {StatusOf(errno), 0};
    const ViStatus waited = WaitReady(impl_->fd.Get(), POLLIN, impl_->receiving, deadline);
    if (waited != VI_SUCCESS) return {waited, 0};
  }
}

Transfer Socket::Send(std::span<const std::uint8_t> bytes, Deadline& deadline) {
  for (;;) {
    const ssize_t count =
        send(impl_->fd.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (count >= 0) return {VI_SUCCESS, static_cast<std::size_t>(count)};
    if (errno == EINTR) continue;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return {StatusOf(errno), 0};
    const ViStatus waited = WaitReady(impl_->fd.Get(), POLLOUT, impl_->sending, deadline);
    if (waited != VI_SUCCESS) return {waited, 0};
  }
}

void Socket::Abort() {
  impl_->receiving.Abort();
  impl_->sending.Abort();
}

void Socket::Close() {
  impl_->receiving.Close();
  impl_->sending.Close();
}

bool Socket::SetNoDelay(bool on) {
  return SetOption(impl_->fd.Get(), IPPROTO_TCP, TCP_NODELAY, on ? 1 : 0);
}

bool Socket::SetKeepAlive(bool on) {
  return SetOption(impl_->fd.Get(), SOL_SOCKET, SO_KEEPALIVE, on ? 1 : 0);
}

bool Socket::KeepAlive(std::uint32_t idle, std::uint32_t interval, std::uint32_t probes) {
  const int fd = impl_->fd.Get();
  return SetOption(fd, IPPROTO_TCP, TCP_KEEPIDLE, static_cast<int>(idle)) &&
         SetOption(fd, IPPROTO_TCP, TCP_KEEPINTVL, static_cast<int>(interval)) &&
         SetOption(fd, IPPROTO_TCP, TCP_KEEPCNT, static_cast<int>(probes)) && SetKeepAlive(true);
}

}  // namespace zevisa
