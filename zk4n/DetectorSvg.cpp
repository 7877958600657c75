#include "zk4n/DetectorSvg.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include "zk4n/Chart.h"

namespace zk4n {
namespace {

constexpr std::size_t kMostCurves = 80;

/// "3.22 M": detectors count from a few to millions.
std::string LevelLabel(double level) {
  const SiPrefix prefix = std::abs(level) < 1000.0 ? SiPrefix{"", 1.0} : PrefixFor(level);
  const std::string number = FormatNumber(level / prefix.factor, 3);
  return prefix.letter.empty() ? number : number + " " + std::string(prefix.letter);
}

/// The rows to show, lowest level first: all of them, or that many evenly picked.
std::vector<std::uint32_t> RowsToShow(const CSimpleMatrix& matrix) {
  std::vector<std::uint32_t> rows(matrix.GetRows() - 1);
  std::iota(rows.begin(), rows.end(), 1U);
  std::stable_sort(rows.begin(), rows.end(), [&matrix](std::uint32_t a, std::uint32_t b) {
    return matrix.GetItem(0, a) < matrix.GetItem(0, b);
  });
  if (rows.size() <= kMostCurves) return rows;
  std::vector<std::uint32_t> picked;
  for (std::size_t i = 0; i < kMostCurves; ++i) {
    picked.push_back(rows[i * (rows.size() - 1) / (kMostCurves - 1)]);
  }
  return picked;
}

}  // namespace

std::string DetectorAsSvg(const CSimpleMatrix& matrix, const std::string& title) {
  const std::uint32_t points = matrix.GetCols() - 1;
  const std::vector<std::uint32_t> rows = RowsToShow(matrix);
  std::vector<double> frequencies(points);
  for (std::uint32_t i = 0; i < points; ++i) frequencies[i] = matrix.GetItem(i + 1, 0) * 1e6;
  std::vector<std::vector<double>> values(rows.size(), std::vector<double>(points));

  Chart chart;
  chart.title = title;
  chart.subtitle = "Detector characteristic, frequencies: " + std::to_string(points) +
                   ", levels: " + std::to_string(matrix.GetRows() - 1);
  if (rows.size() < matrix.GetRows() - 1) {
    chart.subtitle += " (" + std::to_string(rows.size()) + " shown)";
  }
  chart.x = {"Frequency", Unit::kHertz};
  chart.y = {"Calibrated value", Unit::kDecibelMilliwatt};
  chart.points = frequencies;
  chart.colour_bar = "Level (linear)";
  for (std::size_t k = 0; k < rows.size(); ++k) {
    for (std::uint32_t i = 0; i < points; ++i) values[k][i] = matrix.GetItem(i + 1, rows[k]);
    const double place =
        rows.size() < 2 ? 0.0 : static_cast<double>(k) / static_cast<double>(rows.size() - 1);
    chart.curves.push_back(
        {LevelLabel(matrix.GetItem(0, rows[k])), RampColour(place), "", values[k], 1.3});
  }
  return ChartAsSvg(chart);
}

}  // namespace zk4n
