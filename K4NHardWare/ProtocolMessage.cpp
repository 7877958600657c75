#include "K4NHardWare/ProtocolMessage.h"

#include <algorithm>
#include <stdexcept>

using namespace k4n;

namespace {

// Offsets in the header.
constexpr std::size_t kMagicOffset = 0;
constexpr std::size_t kCommandOffset = 2;
constexpr std::size_t kStatusOffset = 4;
constexpr std::size_t kLengthOffset = 6;
constexpr std::size_t kCountOffset = 8;
constexpr std::size_t kReservedOffset = 10;
constexpr std::size_t kSequenceOffset = 12;

void Put16(ProtocolMessage::Header& header, std::size_t offset, std::uint16_t value) {
  header[offset] = static_cast<std::uint8_t>(value);
  header[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}

std::uint16_t Get16(const ProtocolMessage::Header& header, std::size_t offset) {
  return static_cast<std::uint16_t>(header[offset] | header[offset + 1] << 8);
}

}  // namespace

ProtocolMessage::ProtocolMessage() : own_buffer_(kBodyCapacity), buffer_(own_buffer_) {}

ProtocolMessage::ProtocolMessage(std::span<std::uint8_t> buffer) : buffer_(buffer) {}

void ProtocolMessage::Begin(Command command, std::uint8_t count, std::uint8_t type,
                            std::uint16_t reserved) {
  header_.fill(0);
  Put16(header_, kCommandOffset, static_cast<std::uint16_t>(command));
  header_[kCountOffset] = count;
  header_[kTypeOffset] = type;
  Put16(header_, kReservedOffset, reserved);
}

void ProtocolMessage::Append(std::span<const std::uint8_t> bytes) {
  const std::size_t fill = length();
  if (bytes.size() > buffer_.size() - std::min(fill, buffer_.size())) {
    throw std::length_error("Debug: Message too long. ProtocolMessage::Append");
  }
  std::copy(bytes.begin(), bytes.end(), buffer_.begin() + static_cast<std::ptrdiff_t>(fill));
  Put16(header_, kLengthOffset, static_cast<std::uint16_t>(fill + bytes.size()));
}

void ProtocolMessage::Finalize(std::uint32_t sequence) {
  static constexpr std::array<std::uint8_t, 1> kPadding = {0};
  if (length() % 2 != 0) Append(kPadding);
  Put16(header_, kMagicOffset, kMagic);
  Put16(header_, kStatusOffset, kRequestStatus);
  Put16(header_, kSequenceOffset, static_cast<std::uint16_t>(sequence));
  Put16(header_, kSequenceOffset + 2, static_cast<std::uint16_t>(sequence >> 16));
}

bool ProtocolMessage::HasMagic() const { return Get16(header_, kMagicOffset) == kMagic; }

Status ProtocolMessage::status() const {
  return Status{static_cast<std::int16_t>(Get16(header_, kStatusOffset))};
}

std::uint16_t ProtocolMessage::length() const { return Get16(header_, kLengthOffset); }

std::uint32_t ProtocolMessage::sequence() const {
  return Get16(header_, kSequenceOffset) |
         static_cast<std::uint32_t>(Get16(header_, kSequenceOffset + 2)) << 16;
}

std::span<const std::uint8_t> ProtocolMessage::payload() const {
  return buffer_.first(std::min<std::size_t>(length(), buffer_.size()));
}
