// The level of a detector reading.
#pragma once

#include <span>

namespace measurement {

/// The base-10 logarithm, within one unit in the last place and exact for powers of ten. Unlike the
/// standard library's it is the same to the last bit on every system. -infinity for 0, NaN for
/// negative values.
double Log10(double x);

/// The level at which a channel's table is looked up: the logarithm of the scaled reading, which is
/// finite, and -3 for a reading up to 0.001, of which the logarithm says nothing.
double DetectorLevel(double reading);

/// Replaces every reading by its level.
void DetectorLevels(std::span<double> readings);

}  // namespace measurement
