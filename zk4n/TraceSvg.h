// A trace as a plot for a report: three labelled curves.
#pragma once

#include <string>

#include "zk4n/Trace.h"

namespace zk4n {

/// The plot as an SVG document (see Chart.h).
std::string TraceAsSvg(const Trace& trace, const TraceOrigin& origin);

}  // namespace zk4n
