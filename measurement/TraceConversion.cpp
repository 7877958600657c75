#include "measurement/TraceConversion.h"

#include <algorithm>
#include <limits>

#include "measurement/DetectorLevel.h"

namespace measurement {

namespace {

/// Points are worked on in pieces that stay in the first-level cache.
constexpr std::size_t kPiece = 512;

/// Two factors for a reading, applied one after the other.
struct ReadingScale {
  double unit = 1.0;
  double fraction = 1.0;  // a power of two: exact
};

/// The unit of the older detectors, as an exact fraction: 5e6 / 2^24.
constexpr ReadingScale kDetectorUnit{5e6, 1.0 / 16777216.0};

ReadingScale ScaleOf(const RawBlock& block) {
  ReadingScale scale;
  if (block.kind == InstrumentKind::kDetectors) scale = kDetectorUnit;
  if (block.format == ReadingFormat::kFractional) scale.fraction /= 256.0;
  return scale;
}

double ReadingAt(const std::uint8_t* bytes) {
  const std::uint32_t bits =
      static_cast<std::uint32_t>(bytes[0]) | (static_cast<std::uint32_t>(bytes[1]) << 8) |
      (static_cast<std::uint32_t>(bytes[2]) << 16) | (static_cast<std::uint32_t>(bytes[3]) << 24);
  return static_cast<double>(static_cast<std::int32_t>(bits));
}

/// The generator's frequencies at the points first, first + 1 ..., Hz.
void PlanFrequencies(const FrequencyPlan& plan, std::size_t first, std::span<double> frequencies) {
  switch (plan.mode) {
    case FrequencyPlan::Mode::kFixed:
      std::fill(frequencies.begin(), frequencies.end(), plan.cw);
      break;
    case FrequencyPlan::Mode::kStep:
      for (std::size_t i = 0; i < frequencies.size(); ++i) {
        frequencies[i] = plan.start + plan.step * static_cast<double>(first + i);
      }
      break;
    case FrequencyPlan::Mode::kList:
      for (std::size_t i = 0; i < frequencies.size(); ++i) {
        frequencies[i] = first + i < plan.list.size() ? plan.list[first + i] : plan.cw;
      }
      break;
  }
}

/// From the generator's frequency, Hz, to the detector's, MHz.
void TransformFrequencies(const ChannelTransform& transform, std::span<const double> generator,
                          std::span<double> detector_mhz) {
  for (std::size_t i = 0; i < generator.size(); ++i) {
    detector_mhz[i] =
        (generator[i] * transform.multiplier / transform.divider + transform.offset) / 1e6;
  }
}

/// The levels of one channel; `bytes` points at its first reading.
void Levels(const std::uint8_t* bytes, const ReadingScale& scale, std::span<double> levels) {
  for (std::size_t i = 0; i < levels.size(); ++i) {
    levels[i] = ReadingAt(bytes + i * kBytesPerPoint) * scale.unit * scale.fraction;
  }
  DetectorLevels(levels);
}

}  // namespace

void ConvertBlock(const RawBlock& block, const FrequencyPlan& plan,
                  const std::array<ChannelCalibration, kTraceChannels>& channels,
                  TraceMatrix& trace) {
  const std::size_t points = block.PointCount();
  if (trace.Resize(static_cast<std::int32_t>(kTraceChannels), static_cast<std::int32_t>(points)) !=
      Status::kOk) {
    return;
  }
  const ReadingScale scale = ScaleOf(block);
  std::array<double, kPiece> generator;
  std::array<double, kPiece> detector;
  std::array<double, kPiece> levels;
  for (std::size_t first = 0; first < points; first += kPiece) {
    const std::size_t count = std::min(kPiece, points - first);
    PlanFrequencies(plan, first, std::span(generator).first(count));
    const ChannelTransform* transformed = nullptr;  // what made the detector's frequencies
    for (std::size_t channel = 0; channel < kTraceChannels; ++channel) {
      const std::span<double> values =
          trace.Row(static_cast<std::int32_t>(channel)).subspan(first, count);
      const ChannelCalibration& calibration = channels[channel];
      if (calibration.table == nullptr) {
        std::fill(values.begin(), values.end(), std::numeric_limits<double>::quiet_NaN());
        continue;
      }
      if (transformed == nullptr || *transformed != calibration.transform) {
        transformed = &calibration.transform;
        TransformFrequencies(*transformed, std::span(generator).first(count), detector);
      }
      Levels(&block.points[first * kBytesPerPoint + channel * 4], scale,
             std::span(levels).first(count));
      calibration.table->Interpolate(std::span(detector).first(count),
                                     std::span(levels).first(count), values);
    }
  }
}

}  // namespace measurement
