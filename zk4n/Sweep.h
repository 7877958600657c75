// One stepped measurement through the driver: set up, start, wait, fetch.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <stdexcept>

#include "zk4n/DriverClient.h"
#include "zk4n/Trace.h"

namespace zk4n {

/// What is measured. Frequencies in hertz, levels in dBm (their step in dB).
struct MeasurementPlan {
  SweptAxis axis = SweptAxis::kFrequency;
  double start = 1e9;
  double stop = 3e9;
  double step = 5e6;
  double level = 0.0;      ///< of the output while frequency is stepped
  double frequency = 1e9;  ///< of the output while the level is stepped
  double dwell = 0.0;      ///< seconds a point
  std::int32_t averaging = 3;
};

/// The points that a plan asks for.
std::size_t PointsOf(const MeasurementPlan& plan);

/// The user asked to stop (Ctrl-C).
class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("interrupted") {}
};

/// Called now and then with the share of the work that is done, 0 to 1.
using Progress = std::function<void(double share)>;

/// Runs the plan on an open session. An instrument that cannot deliver so many points in one sweep
/// shortens it and says so by its read-back; the rest is then measured in further sweeps. What lies
/// beyond the instrument's limits is left out. Leaves the output switched off. Throws DriverError,
/// also for failures that only the driver's error trail tells of; Interrupted when `interrupted`
/// says so; std::runtime_error when the instrument cannot step so finely, and when it delivers
/// nothing in many times the time that the sweep takes.
Trace RunSweep(const DriverClient& driver, const MeasurementPlan& plan, const Progress& progress,
               const std::function<bool()>& interrupted);

}  // namespace zk4n
