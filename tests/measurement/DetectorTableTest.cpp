#include "measurement/DetectorTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "tests/measurement/Rows.h"

using namespace measurement;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// A table with the values 10 x (column index) + (row index), both from 0.
CSimpleMatrix Table(const std::vector<double>& frequencies, const std::vector<double>& levels) {
  CSimpleMatrix matrix;
  matrix.Resize(static_cast<std::uint32_t>(frequencies.size() + 1),
                static_cast<std::uint32_t>(levels.size() + 1));
  for (std::uint32_t c = 0; c < frequencies.size(); ++c) {
    matrix.SetItem(c + 1, 0, frequencies[c]);
    for (std::uint32_t r = 0; r < levels.size(); ++r) {
      matrix.SetItem(0, r + 1, levels[r]);
      matrix.SetItem(c + 1, r + 1, 10.0 * c + r);
    }
  }
  return matrix;
}

struct LookUp {
  const char* fault;
  std::vector<double> frequencies;
  std::vector<double> levels;
  double frequency;
  double level;
  double value;
};

const std::vector<double> kUp = {100, 200, 400};
const std::vector<double> kDown = {400, 200, 100};
const std::vector<double> kLevels = {-2, -1};
const std::vector<double> kLevelsDown = {-1, -2};

const LookUp kLookUps[] = {{"Corner", kUp, kLevels, 100, -2, 0},
                           {"OnAPoint", kUp, kLevels, 200, -1, 11},
                           {"Between", kUp, kLevels, 250, -1.75, 12.75},
                           {"BelowBoth", kUp, kLevels, 50, -9, 0},
                           {"AboveBoth", kUp, kLevels, 5000, 9, 21},
                           {"BelowOneOnly", kUp, kLevels, 50, -1.5, 0.5},
                           {"Descending", kDown, kLevelsDown, 250, -1.75, 8.25},
                           {"DescendingBelow", kDown, kLevelsDown, 50, -9, 21},
                           {"DescendingAbove", kDown, kLevelsDown, 5000, 9, 0},
                           {"OneDescends", kUp, kLevelsDown, 250, -1.75, 13.25},
                           {"OneFrequency", {7}, kLevels, 3, -1.5, 0.5},
                           {"OnePoint", {7}, {-1}, 8, -3, 0},
                           {"EqualFrequencies", {5, 5}, {-1}, 5, -1, 10},
                           {"EqualFrequenciesBelow", {5, 5}, {-1}, 4, -1, 0},
                           {"StepInTheAxis", {1, 2, 2, 3}, {-1}, 2, -1, 20},
                           {"NoFrequency", {}, kLevels, 1, 1, kNan},
                           {"NoLevel", kUp, {}, 1, 1, kNan},
                           {"InfiniteFrequency", kUp, kLevels, kInfinity, -2, 20},
                           {"MinusInfiniteLevel", kUp, kLevels, 200, -kInfinity, 10},
                           {"NanFrequency", kUp, kLevels, kNan, -2, kNan},
                           {"NanLevelOfOneRow", kUp, {-1}, 200, kNan, kNan},
                           {"LevelAxisFromZero", kUp, {-kInfinity, -1, 0}, 100, -1.5, 1},
                           {"NanInTheAxisStaysInside", {1, kNan, kNan}, kLevels, 7, -2, 0}};

TEST(DetectorTable, GivesTheValueAtEachPlace) {
  for (const auto& [fault, frequencies, levels, frequency, level, value] : kLookUps) {
    const CSimpleMatrix matrix = Table(frequencies, levels);
    EXPECT_PRED2(IsSame, InterpolateDetector(matrix, frequency, level), value) << fault;
    EXPECT_PRED2(IsSame, DetectorTable(matrix).Interpolate(frequency, level), value) << fault;
  }
}

TEST(DetectorTable, NeverLoadedGivesNan) {
  EXPECT_TRUE(std::isnan(DetectorTable().Interpolate(1, 1)));
  EXPECT_TRUE(std::isnan(InterpolateDetector(CSimpleMatrix(), 1, 1)));
}

enum class Shape { kAscending, kDescending, kRepeating, kUnsorted, kWild };

std::vector<double> RandomAxis(Shape shape, std::mt19937& random) {
  std::uniform_int_distribution<int> size(1, 12);
  std::uniform_real_distribution<double> point(-4, 3);
  std::vector<double> axis(static_cast<std::size_t>(size(random)));
  for (double& x : axis) x = shape == Shape::kRepeating ? std::round(point(random)) : point(random);
  if (shape == Shape::kWild) {
    const double odd[] = {kNan, kInfinity, -kInfinity, 1e308, -1e308};
    for (double& x : axis) x = odd[random() % 5];
  } else if (shape != Shape::kUnsorted) {
    std::sort(axis.begin(), axis.end());
  }
  if (shape == Shape::kDescending || random() % 4 == 0) std::reverse(axis.begin(), axis.end());
  return axis;
}

TEST(DetectorTable, EqualsThePlainLookUpBitForBit) {
  std::mt19937 random(20);
  std::uniform_real_distribution<double> place(-5, 4);
  const Shape shapes[] = {Shape::kAscending, Shape::kDescending, Shape::kRepeating,
                          Shape::kUnsorted, Shape::kWild};
  for (int round = 0; round < 4000; ++round) {
    const auto frequencies = RandomAxis(shapes[random() % 5], random);
    const auto levels = RandomAxis(shapes[random() % 5], random);
    const CSimpleMatrix matrix = Table(frequencies, levels);
    const DetectorTable table(matrix);
    std::vector<double> x = {kNan, kInfinity, -kInfinity, 1e308, -1e308, 0.5};
    std::vector<double> y = {0.5, -kInfinity, kInfinity, kNan, 1e308, -1e308};
    for (int i = 0; i < 30; ++i) {
      x.push_back(i % 3 == 0 ? frequencies[random() % frequencies.size()] : place(random));
      y.push_back(i % 4 == 0 ? levels[random() % levels.size()] : place(random));
    }
    std::vector<double> values(x.size());
    table.Interpolate(x, y, values);
    for (std::size_t i = 0; i < x.size(); ++i) {
      const double plain = InterpolateDetector(matrix, x[i], y[i]);
      ASSERT_PRED2(IsSame, plain, values[i])
          << "at " << x[i] << ", " << y[i] << "\nfrequencies "
          << testing::PrintToString(frequencies) << "\nlevels " << testing::PrintToString(levels);
    }
  }
}

}  // namespace
