// From raw detector readings to calibrated traces.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "measurement/DataBlock.h"
#include "measurement/DetectorTable.h"
#include "measurement/TraceMatrix.h"

namespace measurement {

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

/// The readings of one sweep, as they came from the instrument.
struct RawBlock {
  std::span<const std::uint8_t> points;  ///< an incomplete point at the end is ignored
  ReadingFormat format = ReadingFormat::kFractional;
  InstrumentKind kind = InstrumentKind::kAnalyser;  ///< the older detectors count in their own unit

  [[nodiscard]] std::size_t PointCount() const { return points.size() / kBytesPerPoint; }
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

}  // namespace measurement
