// The instrument behind the wire: answers requests and measures.
#pragma once

#include <cstdint>

#include "simulator/Options.h"
#include "simulator/Settings.h"
#include "simulator/SignalPath.h"
#include "simulator/SweepTimer.h"
#include "simulator/Wire.h"

namespace simulator {

/// Not for use by several threads at once.
class Instrument {
 public:
  explicit Instrument(const Options& options);

  /// The answer to any request but one for data.
  Message Execute(const Message& request);
  /// The answer to a request for data, at the end of a sweep. The request's type code is the format
  /// mark: 'A' for readings with 8 fractional bits, anything else is '@', integers.
  Message MeasureSweep(const Message& request);
  /// What a sweep with the present settings takes.
  [[nodiscard]] SweepPlan Plan() const;

  [[nodiscard]] Settings& settings() { return settings_; }
  [[nodiscard]] const Settings& settings() const { return settings_; }
  [[nodiscard]] SignalPath& signal_path() { return signal_path_; }

 private:
  std::int16_t Read(const Message& request, Bytes& answer) const;
  void AppendPoints(Bytes& block, double scale);

  const Options options_;
  Settings settings_;
  SignalPath signal_path_;
};

}  // namespace simulator
