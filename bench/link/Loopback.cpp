#include "bench/link/Loopback.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace {

constexpr std::size_t kStatusOffset = 4;
constexpr std::size_t kLengthOffset = 6;
constexpr std::size_t kLongestMessage = kHeaderSize + 65535;

void SetNoDelay(int fd) {
  const int on = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

sockaddr_in LoopbackAddress(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

void Serve(int fd) {
  SetNoDelay(fd);
  std::vector<std::uint8_t> message(kLongestMessage);
  std::size_t have = 0;
  for (;;) {
    const ssize_t count = recv(fd, message.data() + have, message.size() - have, 0);
    if (count <= 0) break;
    have += static_cast<std::size_t>(count);
    if (have < kHeaderSize) continue;
    const std::size_t body = message[kLengthOffset] | std::size_t{message[kLengthOffset + 1]} << 8;
    if (have < kHeaderSize + body) continue;
    message[kStatusOffset] = message[kStatusOffset + 1] = 0;
    send(fd, message.data(), have, MSG_NOSIGNAL);
    have = 0;
  }
  close(fd);
}

/// A listening socket on a free port.
int Listen(std::uint16_t& port) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = LoopbackAddress(0);
  socklen_t size = sizeof address;
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      listen(listener, SOMAXCONN) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no loopback port");
  }
  port = ntohs(address.sin_port);
  return listener;
}

int Connect(std::uint16_t port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = LoopbackAddress(port);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(fd);
    throw std::runtime_error("no connection");
  }
  SetNoDelay(fd);
  return fd;
}

/// Until the source ends.
template <typename Note>
void PassOn(int from, int to, const Note& note) {
  std::vector<std::uint8_t> bytes(kLongestMessage);
  for (;;) {
    const ssize_t count = recv(from, bytes.data(), bytes.size(), 0);
    if (count <= 0) break;
    send(to, bytes.data(), static_cast<std::size_t>(count), MSG_NOSIGNAL);
    note();
  }
  shutdown(to, SHUT_WR);
}

}  // namespace

std::string ResourceNameOf(std::uint16_t port) {
  return "TCPIP0::127.0.0.1::" + std::to_string(port) + "::SOCKET";
}

EchoInstrument::EchoInstrument() : listener_(Listen(port_)) {
  thread_ = std::thread([this] { Accept(); });
}

/// The clients must have closed their connections.
EchoInstrument::~EchoInstrument() {
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

void EchoInstrument::Accept() {
  for (;;) {
    const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) return;
    clients_.emplace_back([fd] { Serve(fd); });
  }
}

Tap::Tap(std::uint16_t instrument_port) : listener_(Listen(port_)) {
  thread_ = std::thread([this, instrument_port] {
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) return;
    SetNoDelay(client);
    const int instrument = Connect(instrument_port);
    std::thread requests([&] { PassOn(client, instrument, [] {}); });
    PassOn(instrument, client, [this] { last_answer_ = std::chrono::steady_clock::now(); });
    requests.join();
    close(instrument);
    close(client);
  });
}

Tap::~Tap() {
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

BareClient::BareClient(std::uint16_t port) : fd_(Connect(port)) {}

BareClient::~BareClient() { close(fd_); }

void BareClient::Send(std::span<const std::uint8_t> bytes) const {
  if (send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("send failed");
  }
}

void BareClient::Receive(std::span<std::uint8_t> bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = recv(fd_, bytes.data(), bytes.size(), 0);
    if (count <= 0) throw std::runtime_error("receive failed");
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void BareClient::Exchange(std::span<std::uint8_t> message) const {
  Send(message.first(kHeaderSize));
  Send(message.subspan(kHeaderSize));
  Receive(message.first(kHeaderSize));
  Receive(message.subspan(kHeaderSize));
}
