// Traces as files and tables: CSV, JSON, and the summary that a person reads.
#pragma once

#include <string>

#include "zk4n/Trace.h"

namespace zk4n {

/// One row a point: the axis value and the three channels, with 17 significant digits, behind a
/// header of comments.
std::string TraceAsCsv(const Trace& trace, const TraceOrigin& origin);

/// One JSON object: origin, axis, and per channel its figures and values (null for what is not a
/// number).
std::string TraceAsJson(const Trace& trace, const TraceOrigin& origin);

/// Points, range, and minimum, maximum and mean of each channel and of A-R.
std::string TraceSummaryTable(const Trace& trace, const TraceOrigin& origin);

}  // namespace zk4n
