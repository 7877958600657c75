// Calibrated values of a detector table, as the driver's conversion gives them.
#pragma once

#include <functional>
#include <istream>
#include <string>

#include "measurement/DetectorTable.h"

namespace zk4n {

/// Where a value was asked for. The level is linear, as the detector reads it.
struct DetectorPoint {
  double frequency_mhz;
  double level;
};

/// The value at a point; NaN for a table without an axis.
double DetectorValue(const measurement::DetectorTable& table, const DetectorPoint& point);

/// A finite decimal and nothing else; throws UsageError, which begins with `what`.
double DecimalArgument(const std::string& what, const std::string& text);

/// Hands on the points of a text, one a line as "frequency level"; empty lines do not count. Throws
/// UsageError at the first line that is none.
void ForEachDetectorPoint(std::istream& lines,
                          const std::function<void(const DetectorPoint& point)>& take);

}  // namespace zk4n
