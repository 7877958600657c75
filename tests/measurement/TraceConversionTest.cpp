#include "measurement/TraceConversion.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <vector>

#include "measurement/DataBlock.h"
#include "measurement/DetectorLevel.h"
#include "tests/measurement/Rows.h"
#include "tests/platform/ResultCode.h"

using namespace measurement;

namespace {

using enum InstrumentKind;
using enum ReadingFormat;

using Points = std::vector<std::array<std::int32_t, 3>>;
using Calibrations = std::array<ChannelCalibration, kTraceChannels>;

/// The trace of readings that come in a block.
TraceMatrix Converted(const Points& points, const FrequencyPlan& plan, const Calibrations& channels,
                      ReadingFormat format = kFractional, InstrumentKind kind = kAnalyser) {
  std::vector<std::uint8_t> bytes;
  for (const auto& point : points) {
    for (const std::int32_t reading : point) {
      for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(reading) >> shift));
      }
    }
  }
  bytes.insert(bytes.end(), {0xff, 0x7f});  // status word
  TraceMatrix trace;
  trace.Resize(5, 7);  // of another sweep
  ConvertBlock({bytes, format, kind}, plan, channels, trace);
  return trace;
}

Calibrations WithTable(const Rows& rows) {
  const ChannelCalibration channel{{}, std::make_shared<const DetectorTable>(MatrixOf(rows))};
  return {channel, channel, channel};
}
/// What a table gives back: the frequency (1 to 1e6 MHz), or the level (-5 to 10).
const Calibrations kFrequency = WithTable({{0, 1, 1e6}, {-5, 1, 1e6}, {10, 1, 1e6}});
const Calibrations kLevel = WithTable({{0, 1, 1e6}, {-5, -5, -5}, {10, 10, 10}});

struct LevelCase {
  const char* fault;
  std::int32_t reading;
  ReadingFormat format;
  InstrumentKind kind;
  double level;
};

const LevelCase kReadings[] = {
    {"Zero", 0, kFractional, kAnalyser, -3},
    {"Negative", -2147483647 - 1, kFractional, kAnalyser, -3},
    {"EightFractionalBits", 256, kFractional, kAnalyser, 0},
    {"Integer", 256, kInteger, kAnalyser, 2.408239965311849},
    {"SmallestFraction", 1, kFractional, kAnalyser, -2.408239965311849},
    {"LargestReading", 2147483647, kInteger, kAnalyser, 9.331929865381182},
    {"OwnUnit", 16777216, kInteger, kDetectors, 6.698970004336019},
    {"OwnUnitWithFraction", 1, kFractional, kDetectors, -2.9339898569113805},
    {"OtherKindsAreNotScaled", 16777216, kInteger, InstrumentKind{3}, 7.224719895935548}};

TEST(TraceConversion, LevelIsTheLogarithmOfTheReading) {
  for (const auto& [fault, reading, format, kind, level] : kReadings) {
    const TraceMatrix trace = Converted({{0, reading, 0}}, {.cw = 1e9}, kLevel, format, kind);
    ASSERT_EQ(trace.ColumnCount(), 1);
    EXPECT_NEAR(trace.Item(1, 0), level, 1e-12) << fault;
  }
}

struct PlanCase {
  const char* fault;
  FrequencyPlan plan;
  ChannelTransform transform;
  std::array<double, 3> mhz;
};

using Mode = FrequencyPlan::Mode;
const std::vector<double> kList = {5e7, 3e7, 9e9, 1e8};

const PlanCase kPlans[] = {
    {"Fixed", {Mode::kFixed, 1e9, 2e9, 1e6, kList}, {}, {1000, 1000, 1000}},
    {"Step", {Mode::kStep, 1e9, 2e9, 1e6, kList}, {}, {2000, 2001, 2002}},
    {"List", {Mode::kList, 1e9, 2e9, 1e6, kList}, {}, {50, 30, 9000}},
    {"ShortList", {Mode::kList, 1e9, 2e9, 1e6, std::span(kList).first(2)}, {}, {50, 30, 1000}},
    {"OffsetInHertzAfterTheRatio", {.cw = 1e9}, {1e6, 2, 1}, {2001, 2001, 2001}},
    {"Divider", {.cw = 1e9}, {-5e5, 3, 4}, {749.5, 749.5, 749.5}},
    {"MultiplierZero", {.cw = 1e9}, {7e6, 0, 1}, {7, 7, 7}},
    {"NegativeIsClamped", {.cw = 1e9}, {0, -1, 1}, {1, 1, 1}}};

TEST(TraceConversion, FrequencyOfEachPointReachesTheTable) {
  for (const auto& [fault, plan, transform, mhz] : kPlans) {
    Calibrations channels = kFrequency;
    channels[2].transform = transform;
    const TraceMatrix trace = Converted(Points(3, {1, 1, 1}), plan, channels);
    ASSERT_EQ(trace.ColumnCount(), 3);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(trace.Row(2)[i], mhz[i], 1e-9 * mhz[i]) << fault << ", point " << i;
    }
  }
}

TEST(DataBlock, EndsInItsStatusWord) {
  const std::array<std::uint8_t, 3> body = {1, 0x07, 0x80};
  const auto block = ParseBlock(body);
  ASSERT_TRUE(block);
  EXPECT_EQ(block->points.size(), 1U);
  EXPECT_EQ(block->word, Status{-0x7FF9});
  EXPECT_TRUE(ParseBlock(std::span(body).first(2)));
  EXPECT_FALSE(ParseBlock(std::span(body).first(1)));
  EXPECT_EQ(ReadingFormatOf('A'), kFractional);
  EXPECT_EQ(ReadingFormatOf('@'), kInteger);
  EXPECT_EQ(ReadingFormatOf('B'), std::nullopt);
}

TEST(TraceConversion, OverflowingFrequencyStaysInTheTable) {
  Calibrations channels = kFrequency;
  channels[0].transform.multiplier = std::numeric_limits<double>::max();
  channels[1].transform.offset = std::nan("");
  const TraceMatrix trace = Converted({{1, 1, 1}}, {.cw = 1e9}, channels);
  EXPECT_EQ(trace.Item(0, 0), 1e6);
  EXPECT_TRUE(std::isnan(trace.Item(1, 0)));
  EXPECT_NEAR(trace.Item(2, 0), 1000, 1e-6);
}

/// One reading's value, straight from the formula.
double Straight(std::int32_t reading, ReadingFormat format, InstrumentKind kind, double hertz,
                const ChannelTransform& transform, const CSimpleMatrix& matrix) {
  const double mhz = (hertz * transform.multiplier / transform.divider + transform.offset) / 1e6;
  double scaled = reading;
  if (format == kFractional) scaled = scaled / 256;
  if (kind == kDetectors) scaled = scaled * 5e6 / 16777216;
  return InterpolateDetector(matrix, mhz, DetectorLevel(scaled));
}

TEST(TraceConversion, EqualsTheStraightFormulaBitForBit) {
  std::mt19937 random(3);
  const auto pick = [&random](const auto& values) { return values[random() % std::size(values)]; };
  const double infinity = std::numeric_limits<double>::infinity();
  const double kFactors[] = {1, 1, 1, 2, 0, -1, 0.1, 1e300, infinity, std::nan("")};
  const double kOffsets[] = {0, 0, 0, 1e9, -2e10, 1e308, std::nan("")};
  const double kSteps[] = {1e6, 1e7, -3.3e6, 0, infinity, 5e9};
  const std::int32_t kOddReadings[] = {0, 1, -1, 256, 2147483647, -2147483647 - 1};
  for (int round = 0; round < 60; ++round) {
    std::array<CSimpleMatrix, 3> matrices;
    Calibrations channels;
    for (std::size_t c = 0; c < 3; ++c) {
      CSimpleMatrix& matrix = matrices[c];
      matrix.Resize(2 + static_cast<std::uint32_t>(random() % 30),
                    2 + static_cast<std::uint32_t>(random() % 30));
      const bool down = random() % 2 == 0;
      for (std::uint32_t i = 1; i < matrix.GetCols(); ++i) {
        const std::uint32_t place = down ? matrix.GetCols() - i : i;
        matrix.SetItem(i, 0, 500.0 * place - 499);
        for (std::uint32_t j = 1; j < matrix.GetRows(); ++j) {
          matrix.SetItem(0, j, -3 + 0.3 * (down ? matrix.GetRows() - j : j));
          matrix.SetItem(i, j, static_cast<double>(random()) / 1e9 - 2);
        }
      }
      if (random() % 2 == 0)
        channels[c].transform = {pick(kOffsets), pick(kFactors), pick(kFactors)};
      if (random() % 4 != 0) channels[c].table = std::make_shared<const DetectorTable>(matrix);
    }
    Points points(1 + random() % 1500);
    for (auto& point : points) {
      for (std::int32_t& reading : point) {
        const auto any = static_cast<std::int32_t>(random());
        reading = random() % 8 == 0 ? pick(kOddReadings) : any >> random() % 31;
      }
    }
    const FrequencyPlan plan{Mode::kStep, 0, 1e6, pick(kSteps), {}};
    const ReadingFormat format = random() % 2 == 0 ? kFractional : kInteger;
    const InstrumentKind kind = random() % 2 == 0 ? kDetectors : kAnalyser;
    const TraceMatrix trace = Converted(points, plan, channels, format, kind);
    ASSERT_EQ(trace.ColumnCount(), static_cast<std::int32_t>(points.size()));
    for (std::size_t c = 0; c < 3; ++c) {
      for (std::size_t i = 0; i < points.size(); ++i) {
        const double value = trace.Row(static_cast<std::int32_t>(c))[i];
        const double straight = channels[c].table == nullptr
                                    ? std::nan("")
                                    : Straight(points[i][c], format, kind,
                                               plan.start + plan.step * static_cast<double>(i),
                                               channels[c].transform, matrices[c]);
        ASSERT_PRED2(IsSame, value, straight) << "round " << round << ", channel " << c
                                              << ", point " << i << ", reading " << points[i][c];
      }
    }
  }
}

TEST(TraceConversion, ChannelWithoutTableGivesNan) {
  Calibrations channels = kLevel;
  channels[1].table = nullptr;
  channels[2].table = std::make_shared<const DetectorTable>();
  const TraceMatrix trace = Converted({{1, 1, 1}, {2, 2, 2}}, {}, channels);
  EXPECT_FALSE(std::isnan(trace.Item(0, 1)));
  EXPECT_TRUE(std::isnan(trace.Item(1, 1)));
  EXPECT_TRUE(std::isnan(trace.Item(2, 1)));
}

TEST(TraceConversion, StatusWordAloneEmptiesTheTrace) {
  const TraceMatrix trace = Converted({}, {}, kLevel);
  EXPECT_EQ(trace.RowCount(), 0);
  EXPECT_EQ(trace.ColumnCount(), 0);
}

}  // namespace
