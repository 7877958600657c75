#include "K4NHardWare/HardWareParametr.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

using namespace k4n;

namespace {

constexpr std::size_t kIdentifierSize = 2;

/// Rounds to the nearest 64-bit integer. A value out of range becomes the smallest one, as the
/// processor's own conversion does.
std::int64_t ToInteger(double value) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (!(value >= -kLimit && value < kLimit)) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

}  // namespace

HardWareParametr::HardWareParametr(const ParameterLayout& layout)
    : element_size_(layout.element_size),
      fractional_bytes_(layout.fractional_bytes),
      count_byte_(static_cast<std::uint8_t>(layout.element_count)),
      identifier_(layout.identifier),
      element_count_(layout.element_count),
      is_signed_(layout.is_signed || layout.fractional_bytes != 0),
      image_(kIdentifierSize + std::size_t{layout.element_count} * layout.element_size) {
  image_[0] = static_cast<std::uint8_t>(identifier_);
}

double HardWareParametr::GetValue(std::size_t element) const {
  const std::size_t offset = OffsetOf(element);
  // The bytes above those of a negative element are all ones.
  const bool negative = is_signed_ && (image_[offset + element_size_ - 1] & 0x80) != 0;
  std::uint64_t raw = negative ? ~std::uint64_t{0} : 0;
  for (std::size_t i = element_size_; i-- > 0;) raw = (raw << 8) | image_[offset + i];
  const double value =
      is_signed_ ? static_cast<double>(static_cast<std::int64_t>(raw)) : static_cast<double>(raw);
  return value / std::ldexp(1.0, static_cast<int>(8 * fractional_bytes_));
}

std::uint32_t HardWareParametr::GetCode(std::size_t element) const {
  return static_cast<std::uint32_t>(ToInteger(GetValue(element)));
}

void HardWareParametr::SetValue(double value, std::size_t element) {
  const std::size_t offset = OffsetOf(element);
  const double scaled = std::ldexp(value, static_cast<int>(8 * fractional_bytes_));
  auto raw = static_cast<std::uint64_t>(ToInteger(std::round(scaled)));
  for (std::size_t i = 0; i < element_size_; ++i, raw >>= 8) {
    image_[offset + i] = static_cast<std::uint8_t>(raw);
  }
}

std::uint8_t HardWareParametr::type_code() const {
  return static_cast<std::uint8_t>(fractional_bytes_ + 16 * element_size_);
}

void HardWareParametr::Deserialise(std::span<const std::uint8_t> image) {
  if (image.size() < kIdentifierSize) return;
  identifier_ = static_cast<std::uint16_t>(image[0] | image[1] << 8);
  image_[0] = image[0];
  const std::span<const std::uint8_t> elements = image.subspan(kIdentifierSize);
  const std::size_t whole =
      std::min<std::size_t>(elements.size() / element_size_, element_count_) * element_size_;
  std::copy_n(elements.begin(), whole, image_.begin() + kIdentifierSize);
}

std::size_t HardWareParametr::OffsetOf(std::size_t element) const {
  if (element >= element_count_) {
    throw std::out_of_range("Debug: Wrong element index. HardWareParametr::OffsetOf");
  }
  return kIdentifierSize + element * element_size_;
}
