// The requests of the protocol as tests write and read them.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/link/Hex.h"

namespace scripted {

/// Elements as the wire carries them. `type`: how many bytes an element has, and how many of them
/// are its fraction: 0x62.
inline Bytes Encode(unsigned type, const std::vector<double>& elements) {
  Bytes bytes;
  for (const double element : elements) {
    const double scaled = std::ldexp(element, static_cast<int>(8 * (type & 15)));
    const auto value = static_cast<std::int64_t>(scaled);
    for (unsigned i = 0; i < type >> 4; ++i) {
      bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
  }
  return bytes;
}

/// The body of an answer: the identifier and the elements.
inline Bytes Body(unsigned id, unsigned type, const std::vector<double>& elements) {
  Bytes body = Encode(type, elements);
  body.insert(body.begin(), {static_cast<std::uint8_t>(id), 0});
  return body;
}

/// One request. Whoever compares it compares all its bytes but the message's number.
struct Request {
  unsigned command = 0;
  unsigned id = 0;  ///< of the parameter, 0 without a body
  unsigned type = 0;
  unsigned count = 0;
  Bytes body = {};         ///< behind the identifier, with the byte that makes it even
  unsigned header_id = 0;  ///< as reads of parameters repeat it in the header

  bool operator==(const Request&) const = default;

  /// What matters for an order: command, identifier, type code and count, for example "3:12/42x4";
  /// the command alone without a body.
  [[nodiscard]] std::string Name() const {
    std::string name = std::to_string(command);
    if (body.empty()) return name;
    return name + ':' + std::to_string(id) + '/' + ToHex({{static_cast<std::uint8_t>(type)}}) +
           'x' + std::to_string(count);
  }
  /// The numbers in the body; with a sign where they have a fraction.
  [[nodiscard]] std::vector<double> Elements() const {
    const std::size_t size = type >> 4;
    std::vector<double> elements;
    if (size == 0 || size > sizeof(std::uint64_t)) return elements;
    const unsigned unused = 64 - 8 * static_cast<unsigned>(size);
    for (std::size_t at = 0; at + size <= body.size(); at += size) {
      std::uint64_t bits = 0;
      for (std::size_t i = size; i-- > 0;) bits = bits << 8 | body[at + i];
      const bool is_signed = (type & 15) != 0;
      const auto value = static_cast<std::int64_t>(bits << unused) >> unused;
      elements.push_back(std::ldexp(is_signed ? static_cast<double>(value) : double(bits),
                                    -static_cast<int>(8 * (type & 15))));
    }
    return elements;
  }
};

inline void PrintTo(const Request& request, std::ostream* stream) {
  *stream << request.Name() << " [type " << std::hex << request.type << " header "
          << request.header_id << std::dec << "] " << ToHex(request.body);
}

/// What was written as one frame. Throws for anything but a well-formed request.
inline Request Parse(std::span<const std::uint8_t> header, std::span<const std::uint8_t> body) {
  const auto word = [](std::span<const std::uint8_t> bytes, std::size_t at) {
    return static_cast<unsigned>(bytes[at] | bytes[at + 1] << 8);
  };
  if (header.size() != 16 || word(header, 0) != 0x55AA || word(header, 4) != 0x8000 ||
      word(header, 6) != body.size() || body.size() % 2 != 0) {
    throw std::runtime_error("no request: " + ToHex(header) + " | " + ToHex(body));
  }
  Request request{.command = word(header, 2),
                  .type = header[9],
                  .count = header[8],
                  .header_id = word(header, 10)};
  if (!body.empty()) {
    request.id = word(body, 0);
    request.body.assign(body.begin() + 2, body.end());
  }
  return request;
}

/// A parameter is written: its elements by value, or byte for byte behind the identifier. `count`
/// where the header does not count all elements.
inline Request Write(unsigned id, unsigned type, unsigned count, Bytes body) {
  if (body.size() % 2 != 0) body.push_back(0);
  return {.command = 3, .id = id, .type = type, .count = count, .body = std::move(body)};
}
inline Request Write(unsigned id, unsigned type, const std::vector<double>& elements) {
  return Write(id, type, static_cast<unsigned>(elements.size()), Encode(type, elements));
}
/// A parameter is read: its elements are sent as zeros.
inline Request Read(unsigned id, unsigned type, unsigned count) {
  Request request = Write(id, type, std::vector<double>(count));
  request.command = 4;
  request.header_id = id;
  return request;
}
inline const Request kRecovery{.command = 1};

}  // namespace scripted
