// A trace as a plot for a report: axes with units and engineering ticks, grid, three labelled
// curves.
#pragma once

#include <string>
#include <vector>

#include "zk4n/Trace.h"

/// Ticks at 1, 2 or 5 times a power of ten that lie inside a range, at most about `wanted` of them.
struct Ticks {
  double step = 1.0;
  std::vector<double> values;
};
Ticks TicksFor(double low, double high, int wanted);

/// The plot as an SVG document of 960 x 560 units. Points that are not finite interrupt their
/// curve.
std::string TraceAsSvg(const Trace& trace, const TraceOrigin& origin);
