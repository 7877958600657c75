#include "zk4n/Chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iomanip>
#include <limits>
#include <sstream>

namespace zk4n {
namespace {

constexpr double kWidth = 960.0;
constexpr double kHeight = 560.0;
/// What a colour bar with its labels takes from the plot's width.
constexpr double kBarRoom = 78.0;
/// Longest texts that fit above the plot, in characters.
constexpr std::size_t kTitleLength = 58;
constexpr std::size_t kSubtitleLength = 118;
/// More vertices than this across the plot cannot be told apart: the curve is thinned to extremes a
/// column.
constexpr std::size_t kMaxVertices = 4000;

/// The plot inside the picture.
struct Area {
  double left = 84.0;
  double right = 922.0;
  double top = 86.0;
  double bottom = 490.0;
};

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

bool IsDrawable(double value) { return std::abs(value) < 1e300; }

struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void Include(std::span<const double> values) {
    for (const double value : values) {
      if (!IsDrawable(value)) continue;
      low = std::min(low, value);
      high = std::max(high, value);
    }
  }
  [[nodiscard]] bool IsEmpty() const { return low > high; }
  /// False when the ends differ by less than their digits tell.
  [[nodiscard]] bool HasWidth() const {
    return high - low > std::max(std::abs(low), std::abs(high)) * 1e-9;
  }
  [[nodiscard]] Range WidenedBy(double margin) const { return {low - margin, high + margin}; }
};

/// The points from end to end; a single one in the middle.
Range RangeOfPoints(const Chart& chart) {
  Range range;
  range.Include(chart.points);
  if (range.IsEmpty()) return {0.0, 1.0};
  return range.HasWidth() ? range : range.WidenedBy(std::max(std::abs(range.low) * 0.01, 0.5));
}

/// All curves with a margin; -1 to 1 when there is nothing to show.
Range RangeOfValues(const Chart& chart) {
  Range range;
  for (const ChartCurve& curve : chart.curves) range.Include(curve.values);
  if (range.IsEmpty()) return {-1.0, 1.0};
  const double least = std::max(0.5, std::max(std::abs(range.low), std::abs(range.high)) * 1e-6);
  return range.WidenedBy(std::max((range.high - range.low) * 0.06, least));
}

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

/// As many ticks along the x axis as their labels have room for.
Ticks TicksWithRoom(const Scale& x, double factor) {
  constexpr double kCharacter = 8.0;  // width of one, and as much as two between labels
  Ticks ticks;
  for (const int wanted : {10, 6, 4, 2}) {
    ticks = TicksFor(x.low, x.high, wanted);
    std::size_t longest = 0;
    for (const double v : ticks.values) {
      longest = std::max(longest, TickLabel(v, factor, ticks.step).size());
    }
    const double room = ticks.step / (x.high - x.low) * (x.at_high - x.at_low);
    if (static_cast<double>(longest + 2) * kCharacter <= room) break;
  }
  return ticks;
}

/// The indices to draw: all of them, or the first, lowest, highest and last of each column of many.
std::vector<std::size_t> VerticesOf(std::span<const double> values) {
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

/// Writes the picture, part by part.
class Painter {
 public:
  explicit Painter(const Chart& chart) : chart_(chart) {
    if (!chart.colour_bar.empty()) area_.right -= kBarRoom;
    const Range points = RangeOfPoints(chart);
    const Range values = RangeOfValues(chart);
    x_ = {points.low, points.high, area_.left, area_.right};
    y_ = {values.low, values.high, area_.bottom, area_.top};
    if (chart.x.unit == Unit::kHertz) {
      x_prefix_ = PrefixFor(std::max(std::abs(x_.low), std::abs(x_.high)));
    }
    x_ticks_ = TicksWithRoom(x_, x_prefix_.factor);
    y_ticks_ = TicksFor(y_.low, y_.high, 9);
    svg_ << std::fixed << std::setprecision(2);
  }

  std::string Picture() {
    svg_ << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth << ' ' << kHeight
         << "\" width=\"" << kWidth << "\" height=\"" << kHeight
         << "\" font-family=\"Helvetica, Arial, 'DejaVu Sans', sans-serif\">\n"
         << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    DrawGrid();
    DrawAxisTexts();
    DrawCurves();
    DrawTitle();
    chart_.colour_bar.empty() ? DrawSamples() : DrawColourBar();
    svg_ << "</svg>\n";
    return svg_.str();
  }

 private:
  /// The lines of the grid, the frame and its tick marks.
  void DrawGrid() {
    std::ostringstream grid;
    std::ostringstream marks;
    grid << std::fixed << std::setprecision(2);
    marks << std::fixed << std::setprecision(2);
    for (const double v : x_ticks_.values) {
      grid << 'M' << x_(v) << ' ' << area_.top << 'V' << area_.bottom;
      marks << 'M' << x_(v) << ' ' << area_.bottom << "v6";
    }
    for (const double v : y_ticks_.values) {
      grid << 'M' << area_.left << ' ' << y_(v) << 'H' << area_.right;
      marks << 'M' << area_.left << ' ' << y_(v) << "h-6";
    }
    svg_ << "<path stroke=\"#d8dce0\" stroke-width=\"1\" d=\"" << grid.str() << "\"/>\n"
         << "<path stroke=\"#30363c\" stroke-width=\"1.2\" d=\"" << marks.str() << "\"/>\n<rect"
         << AreaAttributes() << " fill=\"none\" stroke=\"#30363c\" stroke-width=\"1.2\"/>\n";
  }

  std::string AreaAttributes() const {
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << " x=\"" << area_.left << "\" y=\"" << area_.top
         << "\" width=\"" << area_.right - area_.left << "\" height=\"" << area_.bottom - area_.top
         << '"';
    return text.str();
  }

  /// The numbers and names of both axes.
  void DrawAxisTexts() {
    svg_ << "<g font-size=\"13\" fill=\"#30363c\">\n<g text-anchor=\"middle\">\n";
    for (const double v : x_ticks_.values) {
      svg_ << "<text x=\"" << x_(v) << "\" y=\"" << area_.bottom + 23 << "\">"
           << TickLabel(v, x_prefix_.factor, x_ticks_.step) << "</text>\n";
    }
    svg_ << "<text x=\"" << (area_.left + area_.right) / 2 << "\" y=\"" << area_.bottom + 50
         << "\" font-size=\"14\">" << EscapeXml(chart_.x.name) << " (" << x_prefix_.letter
         << UnitSymbol(chart_.x.unit) << ")</text>\n</g>\n<g text-anchor=\"end\">\n";
    for (const double v : y_ticks_.values) {
      svg_ << "<text x=\"" << area_.left - 11 << "\" y=\"" << y_(v) + 4.5 << "\">"
           << TickLabel(v, 1.0, y_ticks_.step) << "</text>\n";
    }
    svg_ << "</g>\n<text text-anchor=\"middle\" font-size=\"14\" transform=\"translate(26 "
         << (area_.top + area_.bottom) / 2 << ") rotate(-90)\">" << EscapeXml(chart_.y.name) << " ("
         << UnitSymbol(chart_.y.unit) << ")</text>\n</g>\n";
  }

  void DrawCurves() {
    svg_ << "<clipPath id=\"plot\"><rect" << AreaAttributes()
         << "/></clipPath>\n<g clip-path=\"url(#plot)\" fill=\"none\" stroke-linejoin=\"round\">\n";
    for (std::size_t i = chart_.curves.size(); i-- > 0;) DrawCurve(chart_.curves[i]);
    svg_ << "</g>\n";
  }

  void DrawCurve(const ChartCurve& curve) {
    svg_ << "<path stroke=\"" << curve.colour << "\" stroke-width=\"" << curve.width << '"'
         << DashAttribute(curve) << " d=\"";
    std::size_t run = 0;  // vertices since the pen went down
    // A point by itself becomes a short stroke, or it would not be seen.
    const auto end_run = [&] { svg_ << (run == 1 ? "m-4 0h8" : ""), run = 0; };
    for (const std::size_t i : VerticesOf(curve.values)) {
      if (!IsDrawable(curve.values[i]) || !IsDrawable(chart_.points[i])) {
        end_run();
        continue;
      }
      svg_ << (run++ == 0 ? 'M' : 'L') << x_(chart_.points[i]) << ' ' << y_(curve.values[i]);
    }
    end_run();
    svg_ << "\"/>\n";
  }

  static std::string DashAttribute(const ChartCurve& curve) {
    return curve.dashes.empty() ? "" : " stroke-dasharray=\"" + curve.dashes + '"';
  }

  void DrawTitle() {
    svg_ << "<text x=\"" << area_.left
         << "\" y=\"32\" font-size=\"19\" font-weight=\"600\" fill=\"#16191d\">"
         << EscapeXml(Shortened(chart_.title, kTitleLength)) << "</text>\n<text x=\"" << area_.left
         << "\" y=\"54\" font-size=\"13\" fill=\"#5a636c\">"
         << EscapeXml(Shortened(chart_.subtitle, kSubtitleLength)) << "</text>\n";
  }

  void DrawSamples() {
    constexpr double kPitch = 128.0;
    double x = area_.right + 12.0 - kPitch * static_cast<double>(chart_.curves.size());
    for (const ChartCurve& curve : chart_.curves) {
      svg_ << "<path d=\"M" << x << " 72h30\" stroke=\"" << curve.colour
           << "\" stroke-width=\"2.4\"" << DashAttribute(curve) << "/>\n<text x=\"" << x + 36
           << "\" y=\"76.5\" font-size=\"13\" fill=\"#30363c\" xml:space=\"preserve\">"
           << EscapeXml(curve.label) << "</text>\n";
      x += kPitch;
    }
  }

  void DrawColourBar() {
    constexpr std::size_t kMostLabels = 13;
    const double left = area_.right + 20.0;
    const std::size_t count = chart_.curves.size();
    if (count == 0) return;
    const double height = (area_.bottom - area_.top) / static_cast<double>(count);
    svg_ << "<g font-size=\"13\" fill=\"#30363c\">\n<text x=\"" << kWidth - 16 << "\" y=\""
         << area_.top - 13 << "\" text-anchor=\"end\">" << EscapeXml(chart_.colour_bar)
         << "</text>\n";
    for (std::size_t i = 0; i < count; ++i) {
      svg_ << "<rect shape-rendering=\"crispEdges\" x=\"" << left << "\" y=\""
           << area_.bottom - height * static_cast<double>(i + 1) << "\" width=\"14\" height=\""
           << height << "\" fill=\"" << chart_.curves[i].colour << "\"/>\n";
    }
    // The first, the last, and some between them.
    const std::size_t labels = std::min(count, kMostLabels);
    for (std::size_t k = 0; k < labels; ++k) {
      const std::size_t i = labels < 2 ? 0 : k * (count - 1) / (labels - 1);
      svg_ << "<text x=\"" << left + 20 << "\" y=\""
           << area_.bottom - height * (static_cast<double>(i) + 0.5) + 4.5 << "\">"
           << EscapeXml(chart_.curves[i].label) << "</text>\n";
    }
    svg_ << "</g>\n";
  }

  const Chart& chart_;
  Area area_;
  Scale x_{};
  Scale y_{};
  SiPrefix x_prefix_{"", 1.0};
  Ticks x_ticks_;
  Ticks y_ticks_;
  std::ostringstream svg_;
};

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
  const double first = std::ceil((low - slack) / ticks.step);
  for (int i = 0; i <= wanted && (first + i) * ticks.step <= high + slack; ++i) {
    ticks.values.push_back((first + i) * ticks.step);
  }
  return ticks;
}

std::string RampColour(double place) {
  using Colour = std::array<double, 3>;
  constexpr std::array<Colour, 5> kRamp{{{0x35, 0x18, 0x6e},
                                         {0x2c, 0x5b, 0x9e},
                                         {0x1c, 0x90, 0x8d},
                                         {0x5c, 0xb0, 0x4a},
                                         {0xe0, 0xa4, 0x1c}}};
  const double position = std::clamp(place, 0.0, 1.0) * (kRamp.size() - 1);
  const auto from = std::min(static_cast<std::size_t>(position), kRamp.size() - 2);
  const double share = position - static_cast<double>(from);
  std::array<int, 3> mixed{};
  for (std::size_t c = 0; c < mixed.size(); ++c) {
    mixed[c] =
        static_cast<int>(std::lround(kRamp[from][c] * (1 - share) + kRamp[from + 1][c] * share));
  }
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "#%02x%02x%02x", static_cast<unsigned>(mixed[0]) & 0xffU,
                static_cast<unsigned>(mixed[1]) & 0xffU, static_cast<unsigned>(mixed[2]) & 0xffU);
  return text.data();
}

std::string ChartAsSvg(const Chart& chart) { return Painter(chart).Picture(); }

}  // namespace zk4n
