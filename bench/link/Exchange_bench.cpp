// One exchange with the instrument as the driver makes it, through the VISA library and on bare
// sockets: header and body written one after the other, the answer's header read, then its body.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/os/Module.h"
#include "visa/Visa.h"

namespace {

constexpr std::size_t kHeader = 16;
constexpr std::size_t kBody = 24;

void SetNoDelay(int fd) {
  const int on = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool ReceiveAll(int fd, std::uint8_t* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = recv(fd, bytes, size, 0);
    if (count <= 0) return false;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

/// Answers each message of one client with as many bytes.
class Instrument {
 public:
  Instrument() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address_), size) != 0 ||
        listen(listener_, 1) != 0 ||
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address_), &size) != 0) {
      throw std::runtime_error("no loopback port");
    }
    thread_ = std::thread([this] { Serve(); });
  }
  ~Instrument() {
    thread_.join();
    close(listener_);
  }
  Instrument(const Instrument&) = delete;
  Instrument& operator=(const Instrument&) = delete;

  [[nodiscard]] const sockaddr_in& address() const { return address_; }

 private:
  void Serve() const {
    const int fd = accept(listener_, nullptr, nullptr);
    SetNoDelay(fd);
    std::array<std::uint8_t, kHeader + kBody> message{};
    while (ReceiveAll(fd, message.data(), message.size())) {
      send(fd, message.data(), message.size(), MSG_NOSIGNAL);
    }
    close(fd);
  }

  int listener_;
  sockaddr_in address_{};
  std::thread thread_;
};

void BareSockets(benchmark::State& state) {
  Instrument instrument;
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&instrument.address()), sizeof(sockaddr_in)) !=
      0) {
    state.SkipWithError("no connection");
  }
  SetNoDelay(fd);
  std::array<std::uint8_t, kHeader + kBody> message{};
  for ([[maybe_unused]] auto _ : state) {
    const bool ok = send(fd, message.data(), kHeader, MSG_NOSIGNAL) == kHeader &&
                    send(fd, message.data() + kHeader, kBody, MSG_NOSIGNAL) == kBody &&
                    ReceiveAll(fd, message.data(), kHeader) &&
                    ReceiveAll(fd, message.data() + kHeader, kBody);
    if (!ok) state.SkipWithError("exchange failed");
  }
  close(fd);
}

void VisaLibrary(benchmark::State& state) {
  os::Module module;
  if (!module.Load(ZK_VISA_MODULE)) {
    state.SkipWithError("no VISA library");
    return;
  }
  const auto open_manager = module.FunctionOf<decltype(viOpenDefaultRM)>("viOpenDefaultRM");
  const auto open = module.FunctionOf<decltype(viOpen)>("viOpen");
  const auto close_object = module.FunctionOf<decltype(viClose)>("viClose");
  const auto read = module.FunctionOf<decltype(viRead)>("viRead");
  const auto write = module.FunctionOf<decltype(viWrite)>("viWrite");
  Instrument instrument;
  const std::string name =
      "TCPIP::127.0.0.1::" + std::to_string(ntohs(instrument.address().sin_port)) + "::SOCKET";
  ViSession manager = 0;
  ViSession session = 0;
  open_manager(&manager);
  if (open(manager, name.c_str(), VI_EXCLUSIVE_LOCK | VI_LOAD_CONFIG, 1000, &session) != 0) {
    state.SkipWithError("no session");
  }
  std::array<ViByte, kHeader + kBody> message{};
  ViUInt32 count = 0;
  for ([[maybe_unused]] auto _ : state) {
    const bool ok = write(session, message.data(), kHeader, &count) >= 0 &&
                    write(session, message.data() + kHeader, kBody, &count) >= 0 &&
                    read(session, message.data(), kHeader, &count) >= 0 &&
                    read(session, message.data() + kHeader, kBody, &count) >= 0;
    if (!ok) state.SkipWithError("exchange failed");
  }
  close_object(manager);
}

BENCHMARK(BareSockets)->UseRealTime();
BENCHMARK(VisaLibrary)->UseRealTime();

}  // namespace
