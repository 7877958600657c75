// A measured trace, as the client keeps it.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zk4n/Quantity.h"

namespace zk4n {

inline constexpr std::array<std::string_view, 3> kChannelLetters{"A", "B", "R"};
inline constexpr std::size_t kChannels = kChannelLetters.size();

/// What was stepped.
enum class SweptAxis { kFrequency, kPower };

/// Three channels of calibrated values over one axis; every vector has one length.
struct Trace {
  SweptAxis axis = SweptAxis::kFrequency;
  std::vector<double> x;  ///< Hz or dBm
  std::array<std::vector<double>, kChannels>
      channels;  ///< A, B, R; as the detector files calibrate them (dBm)

  [[nodiscard]] Unit XUnit() const {
    return axis == SweptAxis::kFrequency ? Unit::kHertz : Unit::kDecibelMilliwatt;
  }
};

/// What a report says about where a trace comes from.
struct TraceOrigin {
  std::string instrument;  ///< type text; empty when the instrument does not tell
  std::string serial;
  std::string resource;
  std::string date;             ///< local, "2026-01-31 12:00:00"
  std::string conditions = {};  ///< what was not stepped: "level 0 dBm, averaging 3"
};

/// Figures of one channel, or of the difference A-R. All NaN for an empty or an uncalibrated trace.
struct ChannelSummary {
  double minimum;
  double maximum;
  double mean;
  double minimum_at;  ///< Hz or dBm
  double maximum_at;
};

ChannelSummary Summarise(const std::vector<double>& x, const std::vector<double>& values);

/// A minus R, point by point.
std::vector<double> TransmissionOf(const Trace& trace);

}  // namespace zk4n
