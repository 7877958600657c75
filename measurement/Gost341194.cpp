#include "measurement/Gost341194.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace measurement {

namespace {

constexpr std::size_t kBlockBytes = 32;

// The constant of the third key; those of the second and fourth are zero.
constexpr std::array<std::uint64_t, 4> kThirdKeyConstant = {0xff00ff00ff00ff00, 0x00ff00ff00ff00ff,
                                                            0xff0000ff00ffff00, 0xff00ffff000000ff};

// The helpers below serve one function, Compress, which must keep its state in registers: hence
// `inline` and the unrolled loops.
using Block = std::array<std::uint64_t, 4>;
using Key = std::array<std::uint32_t, 8>;

inline Block operator^(const Block& a, const Block& b) {
  return {a[0] ^ b[0], a[1] ^ b[1], a[2] ^ b[2], a[3] ^ b[3]};
}

// The standard counts bytes from the least significant one, as the machines that this runs on do.
static_assert(std::endian::native == std::endian::little);

inline Block LoadBlock(const std::uint8_t* bytes) {
  Block block;
  std::memcpy(block.data(), bytes, sizeof block);
  return block;
}

/// The standard's transformation A.
inline Block TransformA(const Block& y) { return {y[1], y[2], y[3], y[0] ^ y[1]}; }

/// The standard's transformation P: key word k is made of byte k of each of the four words.
inline Key TransformP(const Block& w) {
  constexpr std::uint64_t kBytes = 0x00ff00ff00ff00ff;
  constexpr std::uint64_t kPairs = 0x0000ffff0000ffff;
  const auto even = [](std::uint64_t low, std::uint64_t high, std::uint64_t mask, int shift) {
    return (low & mask) | ((high & mask) << shift);
  };
  const auto odd = [](std::uint64_t low, std::uint64_t high, std::uint64_t mask, int shift) {
    return ((low >> shift) & mask) | (high & ~mask);
  };
  const std::array<std::uint64_t, 2> low = {even(w[0], w[1], kBytes, 8),
                                            odd(w[0], w[1], kBytes, 8)};
  const std::array<std::uint64_t, 2> high = {even(w[2], w[3], kBytes, 8),
                                             odd(w[2], w[3], kBytes, 8)};
  Key key{};
  for (std::size_t i = 0; i < 2; ++i) {
    const std::uint64_t words_0_4 = even(low[i], high[i], kPairs, 16);
    const std::uint64_t words_2_6 = odd(low[i], high[i], kPairs, 16);
    key[i] = static_cast<std::uint32_t>(words_0_4);
    key[i + 4] = static_cast<std::uint32_t>(words_0_4 >> 32);
    key[i + 2] = static_cast<std::uint32_t>(words_2_6);
    key[i + 6] = static_cast<std::uint32_t>(words_2_6 >> 32);
  }
  return key;
}

/// The four keys, one row a key.
inline std::array<Key, 4> MakeKeys(const Block& state, const Block& message) {
  Block u = state;
  Block v = message;
  std::array<Key, 4> keys;
  keys[0] = TransformP(u ^ v);
  for (std::size_t j = 1; j < keys.size(); ++j) {
    u = TransformA(u);
    if (j == 2) u = u ^ kThirdKeyConstant;
    v = TransformA(TransformA(v));
    keys[j] = TransformP(u ^ v);
  }
  return keys;
}

/// One step of the standard's mixing transformation psi over sixteen 16-bit words.
inline Block Mix(const Block& y) {
  const std::uint64_t top = y[0] ^ (y[0] >> 16) ^ (y[0] >> 32) ^ (y[0] >> 48) ^ y[3] ^ (y[3] >> 48);
  return {(y[0] >> 16) | (y[1] << 48), (y[1] >> 16) | (y[2] << 48), (y[2] >> 16) | (y[3] << 48),
          (y[3] >> 16) | (top << 48)};
}

/// The four words that four steps of psi append to words of which `first` are 0 to 3, `second` 4 to
/// 7 and `last` 12 to 15. Each new word depends on the one before it, so the four are a running
/// exclusive or over the lanes.
inline std::uint64_t NextFour(std::uint64_t first, std::uint64_t second, std::uint64_t last) {
  std::uint64_t next = first ^ ((first >> 16) | (second << 48)) ^ ((first >> 32) | (second << 32)) ^
                       ((first >> 48) | (second << 16)) ^ last;
  next ^= next << 16;
  next ^= next << 32;
  return next ^ ((last >> 48) * 0x0001000100010001);
}

/// 4 x kTimes steps of psi.
template <std::size_t kTimes>
inline Block MixFourTimes(const Block& y) {
  std::array<std::uint64_t, 4 + kTimes> words = {y[0], y[1], y[2], y[3]};
#pragma GCC unroll 16
  for (std::size_t i = 0; i < kTimes; ++i) {
    words[i + 4] = NextFour(words[i], words[i + 1], words[i + 3]);
  }
  return {words[kTimes], words[kTimes + 1], words[kTimes + 2], words[kTimes + 3]};
}

}  // namespace

const GostSubstitution kDetectorFileSubstitution = {{
    {7, 4, 0, 5, 10, 2, 15, 14, 12, 6, 1, 11, 13, 9, 3, 8},
    {10, 9, 6, 8, 13, 14, 2, 0, 15, 3, 5, 11, 4, 1, 12, 7},
    {12, 9, 11, 1, 8, 14, 2, 4, 7, 3, 6, 5, 10, 0, 15, 13},
    {8, 13, 11, 0, 4, 5, 1, 2, 9, 3, 12, 14, 6, 15, 10, 7},
    {3, 6, 0, 1, 5, 13, 10, 8, 11, 2, 9, 7, 14, 15, 12, 4},
    {8, 2, 5, 0, 4, 9, 15, 10, 3, 7, 12, 13, 6, 14, 1, 11},
    {0, 1, 7, 13, 11, 4, 5, 2, 8, 14, 15, 12, 9, 10, 6, 3},
    {1, 11, 12, 2, 9, 13, 0, 15, 4, 5, 8, 14, 10, 7, 6, 3},
}};

Gost341194::Gost341194(const GostSubstitution& substitution) {
  for (std::size_t byte = 0; byte < 4; ++byte) {  // from the least significant
    const auto& high = substitution[2 * (3 - byte)];
    const auto& low = substitution[2 * (3 - byte) + 1];
    for (std::size_t value = 0; value < 256; ++value) {
      const auto word = static_cast<std::uint32_t>((high[value >> 4] << 4) | low[value & 15]);
      round_table_[byte][value] = std::rotl(word << (8 * byte), 11);
    }
  }
}

void Gost341194::Update(std::string_view bytes) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  std::size_t left = bytes.size();
  byte_count_ += left;
  if (pending_size_ != 0) {
    const std::size_t taken = std::min(left, kBlockBytes - pending_size_);
    std::copy_n(data, taken, pending_.begin() + static_cast<std::ptrdiff_t>(pending_size_));
    pending_size_ += taken;
    data += taken;
    left -= taken;
    if (pending_size_ < kBlockBytes) return;
    Absorb(pending_.data());
  }
  for (; left >= kBlockBytes; left -= kBlockBytes, data += kBlockBytes) Absorb(data);
  std::copy_n(data, left, pending_.begin());
  pending_size_ = left;
}

Gost341194::Digest Gost341194::Finish() {
  if (pending_size_ != 0) {
    std::fill(pending_.begin() + static_cast<std::ptrdiff_t>(pending_size_), pending_.end(),
              std::uint8_t{0});
    Absorb(pending_.data());
  }
  Compress({byte_count_ << 3, byte_count_ >> 61, 0, 0});
  Compress(sum_);
  return std::bit_cast<Digest>(state_);
}

void Gost341194::Absorb(const std::uint8_t* bytes) {
  const Block message = LoadBlock(bytes);
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < sum_.size(); ++i) {
    const std::uint64_t partial = sum_[i] + carry;
    carry = partial < carry ? 1 : 0;
    sum_[i] = partial + message[i];
    carry += sum_[i] < partial ? 1 : 0;
  }
  Compress(message);
}

void Gost341194::Compress(const Block& message) {
  const std::array<Key, 4> keys = MakeKeys(state_, message);
  // The four encryptions do not depend on each other: they run side by side.
  std::array<std::uint32_t, 4> low{};
  std::array<std::uint32_t, 4> high{};
  for (std::size_t lane = 0; lane < 4; ++lane) {
    low[lane] = static_cast<std::uint32_t>(state_[lane]);
    high[lane] = static_cast<std::uint32_t>(state_[lane] >> 32);
  }
  const auto round = [&](std::array<std::uint32_t, 4>& from, std::array<std::uint32_t, 4>& to,
                         std::size_t key_word) {
#pragma GCC unroll 4
    for (std::size_t lane = 0; lane < 4; ++lane) {
      const std::uint32_t x = from[lane] + keys[lane][key_word];
      to[lane] ^= round_table_[0][x & 0xff] ^ round_table_[1][(x >> 8) & 0xff] ^
                  round_table_[2][(x >> 16) & 0xff] ^ round_table_[3][x >> 24];
    }
  };
  for (int pass = 0; pass < 3; ++pass) {
    for (std::size_t word = 0; word < 8; word += 2) {
      round(low, high, word);
      round(high, low, word + 1);
    }
  }
  for (std::size_t word = 8; word > 0; word -= 2) {
    round(low, high, word - 1);
    round(high, low, word - 2);
  }
  Block encrypted{};
  for (std::size_t lane = 0; lane < 4; ++lane) {
    encrypted[lane] = (static_cast<std::uint64_t>(low[lane]) << 32) | high[lane];
  }
  const Block mixed = MixFourTimes<3>(encrypted) ^ message;  // psi to the 12th
  state_ = Mix(MixFourTimes<15>(Mix(mixed) ^ state_));       // psi, then psi to the 61st
}

std::string ToHexText(const Gost341194::Digest& digest) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace measurement
