// From raw detector readings to calibrated traces.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "measurement/DetectorTable.h"
#include "measurement/TraceMatrix.h"

/// Channels A, B and R.
inline constexpr std::size_t kTraceChannels = 3;
/// Three signed 32-bit little-endian readings a point.
inline constexpr std::size_t kBytesPerPoint = 4 * kTraceChannels;

/// The frequency that a detector sees, from the generator's: F x multiplier / divider + offset, Hz.
struct ChannelTransform {
  double offset = 0.0;
  double multiplier = 1.0;
  double divider = 1.0;

  bool operator==(const ChannelTransform&) const = default;
};

/// What the generator's frequency did while a block was measured; Hz.
struct FrequencyPlan {
  enum class Mode {
    kFixed,  ///< `cw` at every point (continuous wave, power sweeps)
    kStep,   ///< start + step x i
    kList,   ///< list[i]; `cw` at points past the list's end
  };
  Mode mode = Mode::kFixed;
  double cw = 0.0;
  double start = 0.0;
  double step = 0.0;
  std::span<const double> list{};
};

/// The data block of one sweep, as it came from the instrument.
struct RawBlock {
  /// The points, kBytesPerPoint each; the status word behind them may be included and is not looked
  /// at.
  std::span<const std::uint8_t> bytes;
  /// 'A': readings carry 8 fractional bits; otherwise they are integers.
  char format_mark = 'A';
  /// Kind 2 counts in its own unit, 5e6 / 2^24 of the others'.
  std::uint32_t instrument_kind = 0;

  [[nodiscard]] std::size_t PointCount() const { return bytes.size() / kBytesPerPoint; }
};

/// What turns one channel's readings into values. Without a table every value is NaN.
struct ChannelCalibration {
  ChannelTransform transform;
  std::shared_ptr<const DetectorTable> table;
};

/// Converts a block into a table of 3 rows by its point count. A block without points leaves the
/// table empty. The level of a reading R (after scaling) is log10(R), and -3 up to R = 0.001.
/// Allocates only when the point count differs from the table's.
void ConvertBlock(const RawBlock& block, const FrequencyPlan& plan,
                  const std::array<ChannelCalibration, kTraceChannels>& channels,
                  TraceMatrix& trace);
