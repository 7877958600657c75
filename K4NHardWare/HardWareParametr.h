// One numbered parameter of the instrument's protocol: a short array of fixed-point numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace k4n {

/// How a parameter's elements lie on the wire.
struct ParameterLayout {
  std::uint16_t identifier = 0;
  std::uint32_t element_count = 0;
  std::uint32_t element_size = 0;      ///< bytes, 1 to 8
  std::uint32_t fractional_bytes = 0;  ///< 0 to 2
  bool is_signed = false;              ///< two's complement; implied by fractional bytes
};

}  // namespace k4n

/// Converts between engineering values and the wire image, which is its storage: identifier (low
/// byte, then 0), then the elements, little-endian fixed point.
class HardWareParametr {
 public:
  /// Elements are zero. Throws std::bad_alloc without memory for them.
  explicit HardWareParametr(const k4n::ParameterLayout& layout);
  HardWareParametr(const HardWareParametr&) = default;
  HardWareParametr(HardWareParametr&&) = default;
  HardWareParametr& operator=(const HardWareParametr&) = delete;
  HardWareParametr& operator=(HardWareParametr&&) = delete;
  virtual ~HardWareParametr() = default;

  /// An element's value. Throws std::out_of_range ("Debug...") when there is no such element.
  [[nodiscard]] double GetValue(std::size_t element) const;
  /// An element's value as a code of 32 bits, without its fraction.
  [[nodiscard]] std::uint32_t GetCode(std::size_t element) const;
  /// Rounds to the nearest step, halves away from zero. High bits that do not fit into the element
  /// are cut off.
  void SetValue(double value, std::size_t element);

  [[nodiscard]] std::uint16_t identifier() const { return identifier_; }
  /// The instrument's result code of the last write; 0x8000 before the first one.
  [[nodiscard]] std::uint16_t status() const { return status_; }
  void set_status(std::uint16_t status) { status_ = status; }
  /// The count that travels in the message header: the element count, or what a block transfer
  /// sets.
  [[nodiscard]] std::uint8_t count_byte() const { return count_byte_; }
  void set_count_byte(std::uint8_t count) { count_byte_ = count; }
  /// High half: element size in bytes; low half: fractional bytes.
  [[nodiscard]] std::uint8_t type_code() const;
  [[nodiscard]] std::size_t PayloadSize() const { return image_.size(); }

  /// The wire image; valid until the parameter changes. Kept: its second byte is always 0, so only
  /// identifiers below 256 reach the instrument.
  [[nodiscard]] std::span<const std::uint8_t> Serialise() const { return image_; }
  /// Takes identifier and elements from a wire image. Elements that a short image does not hold
  /// stay as they are.
  void Deserialise(std::span<const std::uint8_t> image);

 private:
  [[nodiscard]] std::size_t OffsetOf(std::size_t element) const;

  std::uint32_t element_size_;
  std::uint32_t fractional_bytes_;
  std::uint8_t count_byte_;
  std::uint16_t identifier_;
  std::uint32_t element_count_;
  bool is_signed_;
  std::uint16_t status_ = 0x8000;
  std::vector<std::uint8_t> image_;
};
