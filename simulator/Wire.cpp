#include "simulator/Wire.h"

#include <algorithm>
#include <cmath>

namespace simulator {

namespace {

// Header fields by offset.
constexpr std::size_t kCommandAt = 2;
constexpr std::size_t kStatusAt = 4;
constexpr std::size_t kLengthAt = 6;
constexpr std::size_t kCountAt = 8;
constexpr std::size_t kTypeAt = 9;
constexpr std::size_t kSequenceAt = 12;

std::uint64_t ReadInteger(std::span<const std::uint8_t> bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = (value << 8) | bytes[i];
  return value;
}

}  // namespace

Message DecodeHeader(std::span<const std::uint8_t> bytes) {
  Message message;
  message.command = ReadWord(bytes, kCommandAt);
  message.status = static_cast<std::int16_t>(ReadWord(bytes, kStatusAt));
  message.count = bytes[kCountAt];
  message.type = bytes[kTypeAt];
  message.sequence = ReadDoubleWord(bytes, kSequenceAt);
  return message;
}

std::size_t BodyLength(std::span<const std::uint8_t> header) { return ReadWord(header, kLengthAt); }

void RequestParser::Feed(std::span<const std::uint8_t> bytes) {
  buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(position_));
  position_ = 0;
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

std::optional<Message> RequestParser::Next() {
  const auto rest = [this] { return std::span(buffer_).subspan(position_); };
  while (rest().size() >= 2 && ReadWord(rest(), 0) != kHeaderWord) ++position_;
  const std::span<const std::uint8_t> bytes = rest();
  if (bytes.size() < kHeaderSize) return std::nullopt;
  const std::size_t length = BodyLength(bytes);
  if (bytes.size() < kHeaderSize + length) return std::nullopt;
  const auto body = bytes.subspan(kHeaderSize, length);
  Message request = DecodeHeader(bytes);
  request.body.assign(body.begin(), body.end());
  position_ += kHeaderSize + length;
  return request;
}

Bytes EncodeAnswer(const Message& answer) {
  const std::size_t length = std::min(answer.body.size(), kMaxBody);
  Bytes bytes;
  bytes.reserve(kHeaderSize + length);
  AppendInteger(bytes, kHeaderWord, 2);
  AppendInteger(bytes, answer.command, 2);
  AppendInteger(bytes, static_cast<std::uint16_t>(answer.status), 2);
  AppendInteger(bytes, length, 2);
  bytes.push_back(answer.count);
  bytes.push_back(answer.type);
  AppendInteger(bytes, 0, 2);
  AppendInteger(bytes, answer.sequence, 4);
  bytes.insert(bytes.end(), answer.body.begin(),
               answer.body.begin() + static_cast<std::ptrdiff_t>(length));
  return bytes;
}

bool IsFileRead(const Message& request) {
  return request.command == command::kRead && request.count == 2 && request.type == 0x40 &&
         request.body.size() >= 2 && ReadWord(request.body, 0) == 10;
}

bool IsSerialNumberQuery(const Message& request) {
  return request.command == command::kRead && request.count == 1 && request.type == 0x20 &&
         request.body.size() >= 2 && ReadWord(request.body, 0) == 'S';
}

std::optional<ElementFormat> ElementFormat::FromType(std::uint8_t type, bool is_signed) {
  const std::size_t size = type >> 4;
  const std::size_t fraction = type & 0x0F;
  if (size < 1 || size > 8 || fraction > 2 || fraction >= size) return std::nullopt;
  return ElementFormat{size, fraction, is_signed};
}

std::vector<double> DecodeElements(std::span<const std::uint8_t> bytes,
                                   const ElementFormat& format) {
  const double unit = std::ldexp(1.0, -8 * static_cast<int>(format.fraction));
  const auto unused_bits = static_cast<int>(64 - 8 * format.size);
  std::vector<double> values;
  values.reserve(bytes.size() / format.size);
  for (; bytes.size() >= format.size; bytes = bytes.subspan(format.size)) {
    const std::uint64_t raw = ReadInteger(bytes.first(format.size));
    if (format.is_signed) {
      const std::int64_t extended = static_cast<std::int64_t>(raw << unused_bits) >> unused_bits;
      values.push_back(static_cast<double>(extended) * unit);
    } else {
      values.push_back(static_cast<double>(raw) * unit);
    }
  }
  return values;
}

void AppendElements(Bytes& bytes, const ElementFormat& format, std::span<const double> values) {
  const int bits = static_cast<int>(8 * format.size) - (format.is_signed ? 1 : 0);
  // Beyond 53 bits the largest integer has no double of its own; no element is so wide.
  const double largest = std::ldexp(1.0, std::min(bits, 53)) - 1.0;
  const double smallest = format.is_signed ? -largest - 1.0 : 0.0;
  for (const double value : values) {
    const double raw = std::round(std::ldexp(value, 8 * static_cast<int>(format.fraction)));
    const auto integer = static_cast<std::int64_t>(std::clamp(raw, smallest, largest));
    AppendInteger(bytes, static_cast<std::uint64_t>(integer), format.size);
  }
}

std::uint16_t ReadWord(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(ReadInteger(bytes.subspan(offset, 2)));
}

std::uint32_t ReadDoubleWord(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return static_cast<std::uint32_t>(ReadInteger(bytes.subspan(offset, 4)));
}

void AppendInteger(Bytes& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

}  // namespace simulator
