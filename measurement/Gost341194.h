// The hash function GOST R 34.11-94.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace measurement {

/// The substitution table of the underlying cipher GOST 28147-89: eight rows of sixteen 4-bit
/// entries, the first row for the most significant 4 bits of a word.
using GostSubstitution = std::array<std::array<std::uint8_t, 16>, 8>;

/// CryptoPro parameter set C: the set of the detector files' digests.
extern const GostSubstitution kDetectorFileSubstitution;

/// GOST R 34.11-94 with a zero starting value over a stream of bytes.
class Gost341194 {
 public:
  using Digest = std::array<std::uint8_t, 32>;

  explicit Gost341194(const GostSubstitution& substitution = kDetectorFileSubstitution);

  void Update(std::string_view bytes);
  /// The digest of all bytes so far. The object cannot be used afterwards.
  [[nodiscard]] Digest Finish();

 private:
  using Block = std::array<std::uint64_t, 4>;  ///< 256 bits, little-endian
  using RoundTable = std::array<std::array<std::uint32_t, 256>, 4>;

  void Absorb(const std::uint8_t* bytes);
  void Compress(const Block& message);

  RoundTable round_table_;  ///< substitution and rotation by 11, one table a byte of the word
  Block state_{};
  Block sum_{};
  std::array<std::uint8_t, 32> pending_{};
  std::size_t pending_size_ = 0;
  std::uint64_t byte_count_ = 0;
};

/// 64 uppercase hexadecimal digits, two a byte, from the first byte on.
std::string ToHexText(const Gost341194::Digest& digest);

}  // namespace measurement
