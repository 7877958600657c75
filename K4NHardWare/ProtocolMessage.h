// One framed message of the instrument's protocol: a 16-byte header and a body.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "status/Status.h"

namespace k4n {

/// What a request asks for.
enum class Command : std::uint16_t {
  kRecover = 1,  ///< ends the error state after a negative answer
  kWriteParameter = 3,
  kReadParameter = 4,
  kReadData = 6,
};

}  // namespace k4n

/// The same object carries a request out and its answer back. All header fields are little-endian
/// on the wire.
class ProtocolMessage {
 public:
  static constexpr std::size_t kHeaderSize = 16;
  static constexpr std::size_t kBodyCapacity = 7000;
  static constexpr std::uint16_t kMagic = 0x55AA;
  static constexpr std::uint16_t kRequestStatus = 0x8000;
  using Header = std::array<std::uint8_t, kHeaderSize>;

  /// With a body buffer of its own, reused by every Begin.
  ProtocolMessage();
  /// With the caller's buffer, which must live as long as the message.
  explicit ProtocolMessage(std::span<std::uint8_t> buffer);
  ProtocolMessage(const ProtocolMessage&) = delete;
  ProtocolMessage& operator=(const ProtocolMessage&) = delete;

  /// Starts a new request with an empty body. `count` and `type` describe the parameter's elements;
  /// `reserved` carries the identifier in read transactions and is 0 otherwise.
  void Begin(k4n::Command command, std::uint8_t count = 0, std::uint8_t type = 0,
             std::uint16_t reserved = 0);
  /// Adds bytes to the body. Throws std::length_error when the buffer is full: a mistake of the
  /// caller.
  void Append(std::span<const std::uint8_t> bytes);
  /// Completes the header for sending: an odd length is rounded up (the instrument ignores the
  /// extra byte).
  void Finalize(std::uint32_t sequence);

  [[nodiscard]] bool HasMagic() const;
  /// The answer's result code: 16 bits, sign-extended.
  [[nodiscard]] Status status() const;
  /// Number of body bytes.
  [[nodiscard]] std::uint16_t length() const;
  [[nodiscard]] std::uint32_t sequence() const;
  [[nodiscard]] std::uint8_t type() const { return header_[kTypeOffset]; }

  [[nodiscard]] Header& header() { return header_; }
  /// The whole body buffer.
  [[nodiscard]] std::span<std::uint8_t> buffer() { return buffer_; }
  /// The body: length() bytes, never more than the buffer holds.
  [[nodiscard]] std::span<const std::uint8_t> payload() const;

 private:
  static constexpr std::size_t kTypeOffset = 9;

  std::vector<std::uint8_t> own_buffer_;
  std::span<std::uint8_t> buffer_;
  Header header_{};
};
