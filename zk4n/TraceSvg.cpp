#include "zk4n/TraceSvg.h"

#include <array>

#include "zk4n/Chart.h"

namespace zk4n {
namespace {

struct CurveStyle {
  const char* colour;
  const char* dashes;
  const char* label;
};
// Colours that stay apart in print and for colour-blind readers; dashes tell them apart in grey.
constexpr std::array<CurveStyle, kChannels> kCurves{{{"#0060a8", "", "A  through"},
                                                     {"#c8501e", "7 3", "B  reflected"},
                                                     {"#2e8540", "2 3", "R  reference"}}};

std::string TitleOf(const TraceOrigin& origin) {
  const std::string title = origin.instrument.empty() ? "Scalar measurement" : origin.instrument;
  return origin.serial.empty() ? title : title + ", serial " + origin.serial;
}

std::string SubtitleOf(const Trace& trace, const TraceOrigin& origin) {
  std::string text = origin.date + ", " + std::to_string(trace.x.size()) + " points";
  for (const std::string& part : {origin.conditions, origin.resource}) {
    if (!part.empty()) text += ", " + part;
  }
  return text;
}

}  // namespace

std::string TraceAsSvg(const Trace& trace, const TraceOrigin& origin) {
  Chart chart;
  chart.title = TitleOf(origin);
  chart.subtitle = SubtitleOf(trace, origin);
  chart.x = {trace.axis == SweptAxis::kFrequency ? "Frequency" : "Source level", trace.XUnit()};
  chart.y = {"Detected level", Unit::kDecibelMilliwatt};
  chart.points = trace.x;
  for (std::size_t c = 0; c < kChannels; ++c) {
    const CurveStyle& style = kCurves[c];
    chart.curves.push_back({style.label, style.colour, style.dashes, trace.channels[c]});
  }
  return ChartAsSvg(chart);
}

}  // namespace zk4n
