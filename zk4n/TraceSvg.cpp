#include "zk4n/TraceSvg.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>

namespace {

constexpr double kWidth = 960.0;
constexpr double kHeight = 560.0;
constexpr double kLeft = 84.0;
constexpr double kRight = 922.0;
constexpr double kTop = 86.0;
constexpr double kBottom = 490.0;
/// Longest texts that fit above the plot, in characters.
constexpr std::size_t kTitleLength = 58;
constexpr std::size_t kSubtitleLength = 118;
/// More vertices than this across the plot cannot be told apart: the curve is thinned to extremes a
/// column.
constexpr std::size_t kMaxVertices = 4000;

struct CurveStyle {
  const char* colour;
  const char* dashes;
  const char* label;
};
// Colours that stay apart in print and for colour-blind readers; dashes tell them apart in grey.
constexpr std::array<CurveStyle, kTraceChannels> kCurves{{{"#0060a8", "", "A  through"},
                                                          {"#c8501e", "7 3", "B  reflected"},
                                                          {"#2e8540", "2 3", "R  reference"}}};

/// One direction of the plot: values to positions.
struct Scale {
  double low;
  double high;
  double at_low;
  double at_high;
  [[nodiscard]] double operator()(double value) const {
    return at_low + (value - low) / (high - low) * (at_high - at_low);
  }
};

std::string EscapeXml(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        // A control character is no XML; what an instrument sends as its name is not trusted.
        if (static_cast<unsigned char>(c) >= 0x20) escaped += c;
    }
  }
  return escaped;
}

/// The finite range of all curves, opened a little; -1 to 1 when there is nothing to show.
std::pair<double, double> ValueRange(const Trace& trace) {
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (const auto& channel : trace.channels) {
    for (const double value : channel) {
      if (!std::isfinite(value)) continue;
      low = std::min(low, value);
      high = std::max(high, value);
    }
  }
  if (low > high) return {-1.0, 1.0};
  const double margin = std::max((high - low) * 0.06, 0.5);
  return {low - margin, high + margin};
}

std::string TickLabel(double value, double factor, double step) {
  std::ostringstream text;
  const double scaled_step = step / factor;
  int decimals = 0;
  for (double s = scaled_step; decimals < 12 && (s < 0.5 || std::abs(s - std::round(s)) > s * 1e-6);
       s *= 10.0) {
    ++decimals;
  }
  const double scaled = std::abs(value / factor);
  const bool zero = scaled < scaled_step * 1e-6;
  text << (value < 0.0 && !zero ? "\u2212" : "") << std::fixed << std::setprecision(decimals)
       << (zero ? 0.0 : scaled);
  return text.str();
}

/// The text with at most so many characters of UTF-8; a longer one ends in three points.
std::string Shortened(const std::string& text, std::size_t length) {
  std::string kept;
  std::size_t characters = 0;
  for (const char c : text) {
    const bool begins = (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    if (begins && ++characters > length) return kept + "...";
    kept += c;
  }
  return kept;
}

/// As many ticks along the frequency axis as their labels have room for.
Ticks TicksWithRoom(double low, double high, double factor) {
  constexpr double kCharacter = 8.0;  // width of one, and as much as two between labels
  Ticks ticks;
  for (const int wanted : {10, 6, 4, 2}) {
    ticks = TicksFor(low, high, wanted);
    std::size_t longest = 0;
    for (const double v : ticks.values) {
      longest = std::max(longest, TickLabel(v, factor, ticks.step).size());
    }
    const double room = ticks.step / (high - low) * (kRight - kLeft);
    if (static_cast<double>(longest + 2) * kCharacter <= room) break;
  }
  return ticks;
}

/// The lines of the grid, the frame and its tick marks.
void DrawGrid(std::ostringstream& svg, const Scale& x, const Ticks& x_ticks, const Scale& y,
              const Ticks& y_ticks) {
  std::ostringstream grid;
  std::ostringstream marks;
  grid << std::fixed << std::setprecision(2);
  marks << std::fixed << std::setprecision(2);
  for (const double v : x_ticks.values) {
    grid << 'M' << x(v) << ' ' << kTop << 'V' << kBottom;
    marks << 'M' << x(v) << ' ' << kBottom << "v6";
  }
  for (const double v : y_ticks.values) {
    grid << 'M' << kLeft << ' ' << y(v) << 'H' << kRight;
    marks << 'M' << kLeft << ' ' << y(v) << "h-6";
  }
  svg << "<path stroke=\"#d8dce0\" stroke-width=\"1\" d=\"" << grid.str() << "\"/>\n"
      << "<path stroke=\"#30363c\" stroke-width=\"1.2\" d=\"" << marks.str() << "\"/>\n"
      << "<rect x=\"" << kLeft << "\" y=\"" << kTop << "\" width=\"" << kRight - kLeft
      << "\" height=\"" << kBottom - kTop
      << "\" fill=\"none\" stroke=\"#30363c\" stroke-width=\"1.2\"/>\n";
}

/// The numbers and names of both axes.
void DrawAxisTexts(std::ostringstream& svg, const Scale& x, const Ticks& x_ticks,
                   const SiPrefix& prefix, const Scale& y, const Ticks& y_ticks,
                   const Trace& trace) {
  svg << "<g font-size=\"13\" fill=\"#30363c\">\n<g text-anchor=\"middle\">\n";
  for (const double v : x_ticks.values) {
    svg << "<text x=\"" << x(v) << "\" y=\"" << kBottom + 23 << "\">"
        << TickLabel(v, prefix.factor, x_ticks.step) << "</text>\n";
  }
  svg << "<text x=\"" << (kLeft + kRight) / 2 << "\" y=\"" << kBottom + 50 << "\" font-size=\"14\">"
      << (trace.axis == SweptAxis::kFrequency ? "Frequency" : "Source level") << " ("
      << prefix.letter << UnitSymbol(trace.XUnit()) << ")</text>\n</g>\n<g text-anchor=\"end\">\n";
  for (const double v : y_ticks.values) {
    svg << "<text x=\"" << kLeft - 11 << "\" y=\"" << y(v) + 4.5 << "\">"
        << TickLabel(v, 1.0, y_ticks.step) << "</text>\n";
  }
  svg << "</g>\n<text text-anchor=\"middle\" font-size=\"14\" transform=\"translate(26 "
      << (kTop + kBottom) / 2 << ") rotate(-90)\">Detected level (dBm)</text>\n</g>\n";
}

/// The indices to draw: all of them, or the first, lowest, highest and last of each column of many.
std::vector<std::size_t> VerticesOf(const std::vector<double>& values) {
  std::vector<std::size_t> kept;
  const std::size_t count = values.size();
  if (count <= kMaxVertices) {
    kept.resize(count);
    for (std::size_t i = 0; i < count; ++i) kept[i] = i;
    return kept;
  }
  const std::size_t columns = kMaxVertices / 4;
  for (std::size_t c = 0; c < columns; ++c) {
    const std::size_t begin = c * count / columns;
    const std::size_t end = (c + 1) * count / columns;
    const auto first = values.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto [low, high] =
        std::minmax_element(first, values.begin() + static_cast<std::ptrdiff_t>(end));
    std::array<std::size_t, 4> picks{begin, static_cast<std::size_t>(low - values.begin()),
                                     static_cast<std::size_t>(high - values.begin()), end - 1};
    std::sort(picks.begin(), picks.end());
    kept.insert(kept.end(), picks.begin(), std::unique(picks.begin(), picks.end()));
  }
  return kept;
}

void DrawCurve(std::ostringstream& svg, const Scale& x, const Scale& y, const Trace& trace,
               std::size_t channel) {
  const std::vector<double>& values = trace.channels[channel];
  svg << "<path fill=\"none\" stroke=\"" << kCurves[channel].colour
      << "\" stroke-width=\"1.8\" stroke-linejoin=\"round\"";
  if (*kCurves[channel].dashes != '\0')
    svg << " stroke-dasharray=\"" << kCurves[channel].dashes << '"';
  svg << " d=\"";
  bool pen_down = false;
  for (const std::size_t i : VerticesOf(values)) {
    if (!std::isfinite(values[i])) {
      pen_down = false;
      continue;
    }
    svg << (pen_down ? 'L' : 'M') << x(trace.x[i]) << ' ' << y(values[i]);
    pen_down = true;
  }
  svg << "\"/>\n";
}

std::string SubtitleOf(const Trace& trace, const TraceOrigin& origin) {
  std::string text = origin.date + ", " + std::to_string(trace.x.size()) + " points";
  for (const std::string& part : {origin.conditions, origin.resource}) {
    if (!part.empty()) text += ", " + part;
  }
  return text;
}

void DrawTitleAndLegend(std::ostringstream& svg, const Trace& trace, const TraceOrigin& origin) {
  std::string title = origin.instrument.empty() ? "Scalar measurement" : origin.instrument;
  if (!origin.serial.empty()) title += ", serial " + origin.serial;
  svg << "<text x=\"" << kLeft
      << "\" y=\"32\" font-size=\"19\" font-weight=\"600\" fill=\"#16191d\">"
      << EscapeXml(Shortened(title, kTitleLength)) << "</text>\n<text x=\"" << kLeft
      << "\" y=\"54\" font-size=\"13\" fill=\"#5a636c\">"
      << EscapeXml(Shortened(SubtitleOf(trace, origin), kSubtitleLength)) << "</text>\n";
  double x = kRight - 372.0;
  for (const CurveStyle& curve : kCurves) {
    svg << "<path d=\"M" << x << " 72h30\" stroke=\"" << curve.colour << "\" stroke-width=\"2.4\"";
    if (*curve.dashes != '\0') svg << " stroke-dasharray=\"" << curve.dashes << '"';
    svg << "/>\n<text x=\"" << x + 36
        << "\" y=\"76.5\" font-size=\"13\" fill=\"#30363c\" xml:space=\"preserve\">" << curve.label
        << "</text>\n";
    x += 128.0;
  }
}

}  // namespace

Ticks TicksFor(double low, double high, int wanted) {
  Ticks ticks;
  if (!(high > low) || !std::isfinite(high - low)) return ticks;
  const double raw = (high - low) / wanted;
  const double decade = std::pow(10.0, std::floor(std::log10(raw)));
  ticks.step = 10.0 * decade;
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (raw <= factor * decade * (1.0 + 1e-9)) {
      ticks.step = factor * decade;
      break;
    }
  }
  const double slack = ticks.step * 1e-6;
  for (double k = std::ceil((low - slack) / ticks.step); k * ticks.step <= high + slack; k += 1.0) {
    ticks.values.push_back(k * ticks.step);
  }
  return ticks;
}

std::string TraceAsSvg(const Trace& trace, const TraceOrigin& origin) {
  double x_low = trace.x.empty() ? 0.0 : std::min(trace.x.front(), trace.x.back());
  double x_high = trace.x.empty() ? 1.0 : std::max(trace.x.front(), trace.x.back());
  if (!(x_high > x_low)) {
    const double opening = std::max(std::abs(x_low) * 0.01, 0.5);
    x_low -= opening;
    x_high += opening;
  }
  const auto [y_low, y_high] = ValueRange(trace);
  const Scale x{x_low, x_high, kLeft, kRight};
  const Scale y{y_low, y_high, kBottom, kTop};

  std::ostringstream svg;
  svg << std::fixed << std::setprecision(2);
  svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth << ' ' << kHeight
      << "\" width=\"" << kWidth << "\" height=\"" << kHeight
      << "\" font-family=\"Helvetica, Arial, 'DejaVu Sans', sans-serif\">\n"
      << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
  const SiPrefix prefix = trace.axis == SweptAxis::kFrequency
                              ? PrefixFor(std::max(std::abs(x_low), std::abs(x_high)))
                              : SiPrefix{"", 1.0};
  const Ticks x_ticks = TicksWithRoom(x_low, x_high, prefix.factor);
  const Ticks y_ticks = TicksFor(y_low, y_high, 9);
  DrawGrid(svg, x, x_ticks, y, y_ticks);
  DrawAxisTexts(svg, x, x_ticks, prefix, y, y_ticks, trace);
  svg << "<clipPath id=\"plot\"><rect x=\"" << kLeft << "\" y=\"" << kTop << "\" width=\""
      << kRight - kLeft << "\" height=\"" << kBottom - kTop << "\"/></clipPath>\n"
      << "<g clip-path=\"url(#plot)\">\n";
  for (std::size_t channel = kTraceChannels; channel-- > 0;) DrawCurve(svg, x, y, trace, channel);
  svg << "</g>\n";
  DrawTitleAndLegend(svg, trace, origin);
  svg << "</svg>\n";
  return svg.str();
}
