// Curves over one axis as a picture for a report: an SVG document of 960 x 560 units with units and
// engineering ticks at both axes, a grid, and a legend.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "zk4n/Quantity.h"

namespace zk4n {

struct ChartAxis {
  std::string name;  ///< "Frequency"
  Unit unit;
};

struct ChartCurve {
  std::string label;
  std::string colour;              ///< "#0060a8"
  std::string dashes;              ///< SVG's dash array; empty for a solid line
  std::span<const double> values;  /// one for each point of the x axis
  double width = 1.8;
};

struct Chart {
  std::string title;
  std::string subtitle;
  ChartAxis x;
  ChartAxis y;
  std::span<const double> points;  ///< of the x axis
  std::vector<ChartCurve> curves;  ///< the first one is drawn above the others
  /// Where it is empty, the legend has a sample of each curve's line above the plot; otherwise it
  /// is a bar of the curves' colours with this name at the right, the first curve at its foot, and
  /// as many labels as there is room for.
  std::string colour_bar;
};

/// Points that are not finite, or too large to be drawn, interrupt their curve.
std::string ChartAsSvg(const Chart& chart);

/// A colour for a place from 0 to 1 on a ramp from dark to bright that also grey prints and
/// colour-blind readers can follow: "#35186e" to "#e0a41c".
std::string RampColour(double place);

/// Ticks at 1, 2 or 5 times a power of ten that lie inside a range, at most about `wanted` of them.
struct Ticks {
  double step = 1.0;
  std::vector<double> values;
};
Ticks TicksFor(double low, double high, int wanted);

}  // namespace zk4n
