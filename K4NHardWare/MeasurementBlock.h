// The newest measurement block, between the thread that reads it and the one that converts it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "K4NHardWare/InstrumentSettings.h"
#include "K4NHardWare/Synchronized.h"
#include "measurement/TraceConversion.h"
#include "measurement/TraceMatrix.h"

namespace k4n {

/// The longest answer with a 16-bit length, rounded up.
inline constexpr std::size_t kLongestBlock = 65536;

/// A list of frequencies or levels; null when there is none.
using SweepList = std::shared_ptr<const std::vector<double>>;

/// Holds at most one block and hands it out once. Its lock, the data lock, is never held while
/// anybody waits for the instrument. Every operation may be called from any thread.
class MeasurementBlock {
 public:
  MeasurementBlock() { points_.reserve(kLongestBlock); }

  /// Replaces the block. `settings` are the present ones: the frequencies of the points are
  /// computed from them.
  void Store(std::span<const std::uint8_t> points, measurement::ReadingFormat format,
             const Synchronized<InstrumentSettings>& settings);
  /// Drops a block that nobody has fetched.
  void Discard();
  /// Converts the block into the trace and drops it. `list` has the frequencies of a list sweep.
  /// Without a block: false, and the trace is unchanged.
  bool Convert(
      measurement::InstrumentKind kind, const SweepList& list,
      const std::array<measurement::ChannelCalibration, measurement::kTraceChannels>& channels,
      TraceMatrix& trace);

 private:
  std::mutex mutex_;
  bool ready_ = false;
  measurement::ReadingFormat format_{};
  std::vector<std::uint8_t> points_;
  InstrumentSettings settings_;  ///< as they were when the block was stored
};

}  // namespace k4n
