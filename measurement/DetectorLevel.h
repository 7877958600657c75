// The level of a detector reading.
#pragma once

/// The base-10 logarithm, within one unit in the last place and exact for powers of ten. Unlike the
/// standard library's it is the same to the last bit on every system. -infinity for 0, NaN for
/// negative values.
double Log10(double x);

/// The level at which a channel's table is looked up: the logarithm of the scaled reading, and -3
/// for a reading up to 0.001, of which the logarithm says nothing.
inline double DetectorLevel(double reading) {
  constexpr double kSmallestReading = 0.001;
  constexpr double kLevelFloor = -3.0;
  return reading <= kSmallestReading ? kLevelFloor : Log10(reading);
}
