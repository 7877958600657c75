// The instrument's data block: the readings of one sweep and a status word behind them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "status/Status.h"

namespace measurement {

/// Channels A, B and R.
inline constexpr std::size_t kTraceChannels = 3;
/// Three signed 32-bit little-endian readings a point.
inline constexpr std::size_t kBytesPerPoint = 4 * kTraceChannels;

/// What the instrument is, by its own code: a generator without detectors, one with older detectors
/// that count in a unit of their own, or a scalar analyser.
enum class InstrumentKind : std::uint32_t { kGenerator = 1, kDetectors = 2, kAnalyser = 18 };

/// The number format of readings: 8 fractional bits, or integers. The values are the format marks:
/// a data request asks for one, its answer names the one used.
enum class ReadingFormat : std::uint8_t { kFractional = 'A', kInteger = '@' };

/// Nothing for an unknown mark.
constexpr std::optional<ReadingFormat> ReadingFormatOf(std::uint8_t mark) {
  const ReadingFormat format{mark};
  if (format != ReadingFormat::kFractional && format != ReadingFormat::kInteger) {
    return std::nullopt;
  }
  return format;
}

struct DataBlock {
  std::span<const std::uint8_t> points;  ///< kBytesPerPoint each, if the block is whole
  Status word = Status::kOk;             ///< 16 bits, sign-extended

  [[nodiscard]] constexpr bool IsWhole() const { return points.size() % kBytesPerPoint == 0; }
};

/// Splits an answer's body into points and status word; nothing if it is too short for a status
/// word.
constexpr std::optional<DataBlock> ParseBlock(std::span<const std::uint8_t> body) {
  if (body.size() < sizeof(std::int16_t)) return std::nullopt;
  const std::size_t end = body.size() - sizeof(std::int16_t);
  const auto word = static_cast<std::int16_t>(body[end] | body[end + 1] << 8);
  return DataBlock{body.first(end), Status{word}};
}

}  // namespace measurement
