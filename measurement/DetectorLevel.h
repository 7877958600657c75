// The level of a detector reading.
#pragma once

#include <span>

namespace measurement {

/// The base-10 logarithm, within one unit in the last place and exact for powers of ten. Unlike the
/// standard library's it is the same to the last bit on every system. -infinity for 0, NaN for
/// negative values.
double Log10(double x);

/// The level for the look-up in a channel's table: log10 of the scaled reading, which must be
/// finite; -3 for readings up to 0.001, whose logarithm means nothing.
double DetectorLevel(double reading);

/// Replaces every reading by its level.
void DetectorLevels(std::span<double> readings);

}  // namespace measurement
