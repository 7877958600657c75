// The two ends of a connection on the loopback interface, on bare sockets: what every figure of the
// link is measured against.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <thread>
#include <vector>

/// A message of the instrument's protocol: a header of 16 bytes, whose bytes 6 and 7 tell the
/// body's length.
inline constexpr std::size_t kHeaderSize = 16;

/// Of an instrument on this machine.
std::string ResourceNameOf(std::uint16_t port);

/// An instrument that agrees with everything: it answers each message with the same message and
/// status 0, in one piece. It serves any number of clients, each on a thread of its own, which run
/// where the thread that makes the instrument may run.
class EchoInstrument {
 public:
  EchoInstrument();
  ~EchoInstrument();
  EchoInstrument(const EchoInstrument&) = delete;
  EchoInstrument& operator=(const EchoInstrument&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] std::string ResourceName() const { return ResourceNameOf(port_); }

 private:
  void Accept();

  std::uint16_t port_ = 0;
  int listener_;
  std::thread thread_;
  std::vector<std::jthread> clients_;  ///< the accepting thread's
};

/// Stands between one client and an instrument, passes on what each sends, and notes when.
class Tap {
 public:
  explicit Tap(std::uint16_t instrument_port);
  /// The client must have closed its connection.
  ~Tap();
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;

  [[nodiscard]] std::string ResourceName() const { return ResourceNameOf(port_); }
  /// When the last byte so far was handed to the client.
  [[nodiscard]] std::chrono::steady_clock::time_point LastAnswer() const { return last_answer_; }

 private:
  std::uint16_t port_ = 0;
  int listener_;
  std::atomic<std::chrono::steady_clock::time_point> last_answer_{};
  std::thread thread_;
};

/// A client on a bare socket that sends without delay. Every operation throws std::runtime_error
/// when the connection breaks.
class BareClient {
 public:
  explicit BareClient(std::uint16_t port);
  ~BareClient();
  BareClient(const BareClient&) = delete;
  BareClient& operator=(const BareClient&) = delete;

  void Send(std::span<const std::uint8_t> bytes) const;
  void Receive(std::span<std::uint8_t> bytes) const;
  /// Header and body written one after the other, the answer's header read, then its body, into
  /// the same message.
  void Exchange(std::span<std::uint8_t> message) const;

 private:
  int fd_;
};
