// zk4n detector: what it finds in files, what it answers, and what it writes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>

#include "measurement/TraceConversion.h"
#include "tests/platform/Content.h"
#include "tests/zk4n/ProgramFixture.h"
#include "zk4n/Commands.h"
#include "zk4n/DetectorCheck.h"
#include "zk4n/DetectorSvg.h"
#include "zk4n/DetectorValues.h"
#include "zk4n/Quantity.h"

using namespace zk4n;
using namespace measurement;

namespace {

using testing::HasSubstr;

const std::string kVersion3 = "#VERSION 3\n0\t100\t200\n1\t-70\t-69\n10\t-60\t-59\n";
const std::string kSigned3 =
    kVersion3 + "\n#CRC 2E11880B07FB41E9755F72C5C1C8C5B689B2DCA6EEF35BDC6658FA20A73107BC";
const std::string kVersion0 = "!note\n100 200 400\n1 2 3\n4 5,5 6\n";

class DetectorTest : public ProgramTest {
 protected:
  std::string Write(const std::string& name, const std::string& content) const {
    std::ofstream(File(name), std::ios::binary) << content;
    return File(name);
  }
  [[nodiscard]] std::string Read(const std::string& name) const { return ContentOf(File(name)); }
};

TEST_F(DetectorTest, CheckTellsWhatAFileHolds) {
  const std::pair<const char*, std::string> files[] = {
      {"version 3", kSigned3},
      {"version 0", kVersion0},
      {"descending", "9 7,5 -1\n1 2 3\n"},
      {"other digest", kVersion3 + "#CRC " + std::string(64, '0')},
      {"no digest", kVersion3},
      {"data behind", kSigned3 + "\n1 2 3\n"},
      {"cut short", "1 2 3\n4 5\n"},
      {"other version", "#VERSION 2\n1 2\n"},
      {"no integer", "#VERSION 99999999999\n1\n"},
      {"no numbers", "nan 1\n"},
      {"empty", ""},
      {"unordered", "5 7 6\n1 2 3\n"},
      {"no level", "5 7 6\n"},
      {"level of zero",
       "#VERSION 3\n0\t100\n0\t-70\n\n"
       "#CRC F90147A06BA6F53F05A02FDE97A418F8561C08C68B4EBDB49F33D811AC32309B"},
      {"level below zero",
       "#VERSION 3\n0\t100\n-1\t-70\n\n"
       "#CRC 1366412DDE70A319B9BF5A0648B868CB135B3096525315AB6E54027F66F2EA7A"},
  };
  std::string told = DetectorCheck("none.det").AsText() + DetectorCheck("none.det").AsJson();
  for (const auto& [name, content] : files) {
    const DetectorCheck check(Write(name, content));
    EXPECT_EQ(check.IsGood(), check.AsText().find(": good\n") != std::string::npos) << name;
    told += "\n" + WithoutFolder(check.AsText() + check.AsJson());
  }
  EXPECT_EQ(told, ContentOf(ZK_REPORTS "/detector.txt"));
  std::ofstream("detector_test_detector.txt", std::ios::binary) << told;
}

TEST_F(DetectorTest, ValuesAreThoseOfTheConversionOnEverySystem) {
  std::shared_ptr<const DetectorTable> table;
  ASSERT_EQ(LoadDetectorTable(ZK_DETECTOR_FILE, table), Status::kOk);
  std::istringstream lines("1500 1000\n\n 20000\t-7 \r\n10 0.001\n+777.7 1.5e6\n12345.678 123456");
  std::string texts;
  ForEachDetectorPoint(lines, [&](const DetectorPoint& point) {
    texts += FormatNumber(DetectorValue(*table, point), 17) + "\n";
  });
  EXPECT_EQ(texts,
            "-45.893829793582483\n-72.009399999999999\n-73.011399999999995\n7.3761559652045516\n"
            "-12.696749630388616\n");
  for (const std::int32_t reading : {-1, 0, 1, 255, 99999, 8000000}) {
    std::vector<std::uint8_t> block;
    block.reserve(12);
    for (int i = 0; i < 12; ++i) {
      block.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(reading) >> i % 4 * 8));
    }
    TraceMatrix trace;
    ConvertBlock({block, ReadingFormat::kInteger}, {.cw = 1.25e9},
                 {{{{}, table}, {{}, table}, {{}, table}}}, trace);
    EXPECT_EQ(
        std::bit_cast<std::uint64_t>(trace.Item(2, 0)),
        std::bit_cast<std::uint64_t>(DetectorValue(*table, {1250.0, static_cast<double>(reading)})))
        << reading;
  }
}

TEST(DetectorPoints, EndAtTheFirstLineThatIsNone) {
  for (const char* const line :
       {"1", "1 2 3", "1,5 2", "nan 1", "1 inf", "1e999 1", "0x1 1", "a b"}) {
    std::istringstream lines(std::string("1 2\n") + line + "\n3 4\n");
    int taken = 0;
    try {
      ForEachDetectorPoint(lines, [&taken](const DetectorPoint&) { ++taken; });
      ADD_FAILURE() << line;
    } catch (const UsageError& error) {
      EXPECT_STREQ(error.what(), "standard input, line 2: not a frequency and a level") << line;
    }
    EXPECT_EQ(taken, 1) << line;
  }
}

TEST_F(DetectorTest, RefusalsTellWhyAndWriteNothing) {
  Write("3.det", kSigned3);
  Write("0.det", kVersion0);
  Write("bad.det", "1 2\n3\n");
  Write("flat.det", "5 7 6\n");
  Write("long.det", [] {
    std::string text;
    for (int i = 0; i < 17000; ++i) text += "1\n";
    return text;
  }());
  ExpectFailures("bad arguments of detector", 2);
  ExpectFailures("failures of detector", 1);
  const Result check = Run(Words("detector check @3.det @bad.det"));
  EXPECT_EQ(check.status, 1);
  EXPECT_EQ(check.errors, "");
  EXPECT_EQ(Files().size(), 5U);
  EXPECT_EQ(Read("3.det") + Read("0.det"), kSigned3 + kVersion0);
}

TEST_F(DetectorTest, SignsAndConverts) {
  const std::string line = "0.3333333333333333 -69\n";  // more digits than 13, fewer than 17
  Write("in.det", "!a\n#VERSION 3\n0 100\n#CRC 12\n" + line);
  EXPECT_EQ(Run(Words("detector sign @in.det @out.det")).status, 0);
  EXPECT_THAT(Read("out.det"),
              testing::StartsWith("!a\n#VERSION 3\n0\t100\n0.33333333333333331\t-69\n\n#CRC "));
  EXPECT_TRUE(DetectorCheck(File("out.det")).IsGood());

  Write("0.det", "#VERSION 0\n" + kVersion0);
  EXPECT_EQ(Run(Words("detector convert @0.det @out.det --force")).status, 0);
  EXPECT_EQ(Read("out.det"),
            "#VERSION 3\n!note\n0\t100\t200\t400\n0.29802322387695312\t1\t2\t3\n"
            "0.31121783924919777\t4\t5.5\t6\n\n"
            "#CRC 19959905F33600CE05D13110466625926B8F2E8BEDA65A9A2405E6E0E3368DC6");
  EXPECT_EQ(Run(Words("detector plot @out.det --svg @out.svg")).status, 0);
  EXPECT_EQ(Read("out.svg"), ContentOf(ZK_REPORTS "/detector.svg"));
  std::ofstream("detector_test_detector.svg", std::ios::binary) << Read("out.svg");
  EXPECT_EQ(Files().size(), 4U) << "something was left behind";
}

std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(DetectorSvg, HasACurveForEachLevelButNotForThousands) {
  const std::string curve = "stroke-width=\"1.30\"";
  CSimpleMatrix shipped;
  ASSERT_EQ(LoadDetectorFile(shipped, ZK_DETECTOR_FILE, nullptr), Status::kOk);
  const std::string svg = DetectorAsSvg(shipped, "<20 GHz>");
  EXPECT_EQ(CountOf(svg, curve), 65U);
  for (const char* const part : {">&lt;20 GHz&gt;</text>", ">8.3 M</text>", ">2</text>"}) {
    EXPECT_THAT(svg, HasSubstr(part));
  }

  CSimpleMatrix of_one_level;
  of_one_level.Resize(2, 2);
  of_one_level.SetItem(0, 1, 1000.0);
  EXPECT_THAT(
      DetectorAsSvg(of_one_level, ""),
      testing::AllOf(HasSubstr("height=\"404.00\" fill=\"#35186e\"/>"), HasSubstr(">1 k<")));

  CSimpleMatrix odd;
  odd.Resize(3, 5001);
  odd.SetItem(1, 0, 1e308);
  odd.SetItem(2, 0, 1e17);
  for (std::uint32_t row = 1; row <= 5000; ++row) {
    odd.SetItem(0, row, -1.0 * row);
    odd.SetItem(1, row, 1e308);
    odd.SetItem(2, row, 1e299 * (row % 3));
  }
  const std::string of_odd = DetectorAsSvg(odd, "");
  EXPECT_EQ(CountOf(of_odd, curve), 80U);
  EXPECT_EQ(CountOf(of_odd, "nan") + CountOf(of_odd, "inf"), 0U);
  EXPECT_EQ(CountOf(of_odd, ">-5 k<") + CountOf(of_odd, ">-1<"), 2U) << "from end to end";
}

}  // namespace
