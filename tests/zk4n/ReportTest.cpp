#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "tests/platform/Content.h"
#include "tests/platform/TemporaryFolder.h"
#include "zk4n/Chart.h"
#include "zk4n/OutputFile.h"
#include "zk4n/TraceFiles.h"
#include "zk4n/TraceSvg.h"

using namespace zk4n;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Trace ThreePoints() {
  Trace trace;
  trace.x = {1e9, 1.5e9, 2e9};
  trace.channels = {{{-10.0, -2.5, -30.0}, {-1.0, -20.0, -0.5}, {0.0, 0.5, 0.25}}};
  return trace;
}

TEST(Ticks, StandAtRoundValuesInsideTheRange) {
  EXPECT_THAT(TicksFor(0.0, 10.0, 10).values, testing::SizeIs(11));
  EXPECT_THAT(
      TicksFor(1e9, 3e9, 10).values,
      testing::ElementsAre(1e9, 1.2e9, 1.4e9, 1.6e9, 1.8e9, 2e9, 2.2e9, 2.4e9, 2.6e9, 2.8e9, 3e9));
  EXPECT_THAT(TicksFor(-61.0, 4.0, 9).values,
              testing::ElementsAre(-60, -50, -40, -30, -20, -10, 0));
  EXPECT_THAT(TicksFor(1.0, 1.0, 9).values, testing::IsEmpty());
  EXPECT_EQ(TicksFor(1.0, 1.0, 9).step, 1.0);
  EXPECT_THAT(TicksFor(kNan, 1.0, 9).values, testing::IsEmpty());
}

TEST(Summary, TakesExtremesAndMeanWithTheirPlaces) {
  const Trace trace = ThreePoints();
  const ChannelSummary summary = Summarise(trace.x, trace.channels[0]);
  EXPECT_EQ(summary.minimum, -30.0);
  EXPECT_EQ(summary.minimum_at, 2e9);
  EXPECT_EQ(summary.maximum, -2.5);
  EXPECT_EQ(summary.maximum_at, 1.5e9);
  EXPECT_DOUBLE_EQ(summary.mean, -42.5 / 3);
  EXPECT_TRUE(std::isnan(Summarise({}, {}).mean)) << "an empty trace has no mean";
  EXPECT_TRUE(std::isnan(Summarise({1.0, 2.0}, {kNan, 0.0}).minimum))
      << "an uncalibrated point must not be hidden";
  EXPECT_THAT(TransmissionOf(trace), testing::ElementsAre(-10.0, -3.0, -30.25));
}

/// A trace with what an instrument may send, and one without points.
TEST(Reports, AreTheFilesOfTheFolder) {
  Trace trace = ThreePoints();
  trace.x[2] = 2000000000.12;
  trace.channels[0] = {0.1, kNan, -1e-4};
  trace.channels[1][1] = -1e-4;
  trace.channels[2] = {kNan, kNan, kNan};
  const TraceOrigin origin{"<K4N & \">", "7*", "TCPIP0::h::1::SOCKET", "today", "level 0 dBm"};
  Trace empty;
  empty.axis = SweptAxis::kPower;
  Trace point = empty;
  point.x = {0.0};
  for (auto& channel : point.channels) channel = {-10.0};
  const std::pair<const char*, std::string> reports[] = {
      {"trace.csv", TraceAsCsv(trace, origin)}, {"trace.json", TraceAsJson(trace, origin)},
      {"trace.svg", TraceAsSvg(trace, origin)}, {"trace.txt", TraceSummaryTable(trace, origin)},
      {"empty.csv", TraceAsCsv(empty, {})},     {"empty.svg", TraceAsSvg(empty, {})},
      {"point.svg", TraceAsSvg(point, {})},     {"empty.txt", TraceSummaryTable(empty, {})},
  };
  for (const auto& [name, text] : reports) {
    EXPECT_EQ(text, ContentOf(std::string(ZK_REPORTS "/") + name)) << name;
    std::ofstream(std::string("report_test_") + name, std::ios::binary) << text;
  }
  EXPECT_THAT(TraceAsJson(trace, {"\xC7\x01", "", "", ""}),
              testing::HasSubstr("\"\uFFFD\\u0001\""));
  EXPECT_THAT(TraceAsSvg(trace, {"\x01", "", "", ""}), testing::Not(testing::HasSubstr("\x01")));
}

TEST(Svg, TextsHaveRoomHoweverNarrowTheRangeAndLongTheName) {
  Trace trace = ThreePoints();
  trace.x = {1e9, 1.0000005e9, 1.000001e9};  // 1 kHz: labels of seven decimals, each 200 Hz
  const std::string svg = TraceAsSvg(trace, {std::string(300, 'W'), "1", "r", "d"});
  EXPECT_THAT(svg, testing::HasSubstr(">1.0000002</text>"));
  EXPECT_THAT(svg, testing::HasSubstr(">" + std::string(58, 'W') + "...</text>"));
}

TEST(Svg, ManyPointsKeepTheirExtremes) {
  Trace trace;
  for (int i = 0; i < 50000; ++i) trace.x.push_back(i);
  trace.channels.fill(std::vector<double>(trace.x.size(), -15.0));
  trace.channels[0][12345] = 0.0;
  trace.channels[0][43210] = -30.0;
  const std::string svg = TraceAsSvg(trace, {});
  EXPECT_LT(svg.size(), 200000U);
  EXPECT_THAT(svg, testing::AllOf(testing::HasSubstr("L290.91 107.64"),
                                  testing::HasSubstr("L808.21 468.36")));
}

TEST(OutputFile, IsWrittenWholeOrNotAtAll) {
  const TemporaryFolder temporary;
  const auto& folder = temporary.path();
  std::filesystem::create_directory(folder / "sub");
  const auto file = folder / "trace.csv";
  for (const char* const content : {"first", "second\n"}) {
    OutputFile output(file);
    EXPECT_TRUE(output.Write(content) && output.Commit());
  }
  { EXPECT_TRUE(OutputFile(file).Write("never committed")); }
  EXPECT_EQ(ContentOf(file), "second\n");
  EXPECT_FALSE(OutputFile(folder / "absent" / "trace.csv").IsOpen());
  EXPECT_FALSE(OutputFile(folder / "sub").IsOpen());
  using Iterator = std::filesystem::recursive_directory_iterator;
  EXPECT_EQ(std::distance(Iterator(folder), Iterator()), 2) << "something was left behind";
#ifndef _WIN32
  const auto link = folder / "link";
  const auto device = folder / "device";
  std::filesystem::create_symlink(file, link);
  std::filesystem::create_symlink("/dev/full", device);
  {
    OutputFile through_link(link);
    EXPECT_TRUE(through_link.Write("through a link") && through_link.Commit());
    OutputFile to_device(device);
    EXPECT_FALSE(to_device.Write("too much"));
    EXPECT_TRUE(to_device.Commit());
  }
  EXPECT_EQ(ContentOf(file), "through a link");
  EXPECT_TRUE(is_symlink(link) && is_symlink(device));
#endif
}

}  // namespace
