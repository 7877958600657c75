// A detector table as a plot for a report.
#pragma once

#include <string>

#include "measurement/SimpleMatrix.h"

namespace zk4n {

/// Value against frequency, one curve a level; of more than 80 levels, that many are shown. The
/// matrix has linear levels, and at least two columns and rows. An SVG document (see Chart.h).
std::string DetectorAsSvg(const CSimpleMatrix& matrix, const std::string& title);

}  // namespace zk4n
