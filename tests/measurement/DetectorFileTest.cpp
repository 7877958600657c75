#include "measurement/DetectorFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "measurement/Gost341194.h"
#include "measurement/MatrixFile.h"
#include "measurement/NewDetectorMatrixConvertor.h"
#include "platform/os/Files.h"
#include "tests/measurement/Rows.h"
#include "tests/measurement/TempFile.h"
#include "tests/platform/ResultCode.h"

using namespace measurement;

namespace {

std::string Signed(const std::string& lines) {
  Gost341194 hash;
  for (const char c : lines) {
    if (c != '\n') hash.Update({&c, 1});
  }
  return lines + "#CRC " + ToHexText(hash.Finish()) + "\n";
}

struct VersionCase {
  const char* fault;
  std::string content;
  std::uint32_t columns;  // 0: 0x8004705C
};

const VersionCase kVersions[] = {{"NoneIsZero", "1 2\n3 4\n", 3},
                                 {"EmptyIsZero", "#VERSION\n1 2\n3 4\n", 3},
                                 {"WordIsZero", "#VERSION three\n1 2\n3 4\n", 3},
                                 {"ZeroNeedsNoDigest", "#VERSION 0\n1 2\n3 4\n#CRC 12\n", 3},
                                 {"Three", Signed("#VERSION 3\n1 2\n3 4\n"), 2},
                                 {"TabsAreContent", Signed("#VERSION\t3\t\n\t1 2\t\n3 4\t\n"), 2},
                                 {"PlusThree", Signed("#VERSION +3\n1 2\n3 4\n"), 2},
                                 {"TwoSignsAreZero", "#VERSION +-3\n1 2\n3 4\n", 3},
                                 {"ThreePointOne", Signed("#VERSION 3.1\n1 2\n3 4\n"), 2},
                                 {"FirstCounts", Signed("#VERSION 3\n#VERSION 2\n1 2\n3 4\n"), 2},
                                 {"ThreeUnsigned", "#VERSION 3\n1 2\n3 4\n", 0},
                                 {"ThreeWithMoreData", Signed("#VERSION 3\n1 2\n") + "3 4\n", 0},
                                 {"Two", Signed("#VERSION 2\n1 2\n3 4\n"), 0},
                                 {"Thirty", Signed("#VERSION 30\n1 2\n3 4\n"), 0},
                                 {"NoWrapAround", Signed("#VERSION 4294967299\n1 2\n3 4\n"), 0},
                                 {"RaggedRows", "1 2\n3\n", 0}};

TEST(DetectorFile, VersionDecidesTheLayout) {
  for (const auto& [fault, content, columns] : kVersions) {
    CSimpleMatrix matrix;
    std::string header = "before";
    EXPECT_EQ(LoadDetectorFile(matrix, TempFile(content).Path(), &header),
              columns == 0 ? Status::kInvalidFileFormat : Status::kOk)
        << fault;
    EXPECT_EQ(matrix.GetCols(), columns) << fault;
    EXPECT_EQ(header == "before", columns == 0) << fault << header;
  }
}

TEST(DetectorFile, VersionZeroGetsALevelColumn) {
  constexpr std::uint32_t kRows = 50;
  std::string lines = "0 10 20 30\n1 11 21 31\n";
  for (std::uint32_t row = 2; row < kRows; ++row) lines += std::to_string(row) + " 12 22 32\n";
  const TempFile file(lines);
  CSimpleMatrix matrix;
  std::string header;
  ASSERT_EQ(LoadDetectorFile(matrix, file.Path(), &header), Status::kOk);
  ASSERT_EQ(matrix.GetCols(), 5U);
  ASSERT_EQ(matrix.GetRows(), kRows);
  EXPECT_EQ(matrix.GetItem(0, 0), 0.0);
  for (std::uint32_t row = 1; row < kRows; ++row) {
    const auto factor = static_cast<double>(std::exp2((row - 1) / 16.0L));
    EXPECT_EQ(matrix.GetItem(0, row), 5e6 * factor / 16777216) << row;
  }
  EXPECT_EQ(matrix.GetItem(1, 2), 2.0);
  EXPECT_EQ(matrix.GetItem(4, 1), 31.0);

  ConvertLevelAxisToLog10(matrix);
  EXPECT_EQ(matrix.GetItem(0, 0), 0.0) << "the corner is no level";
  EXPECT_DOUBLE_EQ(matrix.GetItem(0, 1), std::log10(5e6 / 16777216));
  EXPECT_EQ(matrix.GetItem(1, 1), 1.0) << "values are not converted";
  matrix.SetItem(0, 0, 7.0);
  ASSERT_EQ(LoadDetectorFile(matrix, file.Path(), &header), Status::kOk);
  EXPECT_EQ(matrix.GetItem(0, 0), 0.0) << "what another file left there is gone";
}

TEST(DetectorFile, LevelColumnIsNotTheReaders) {
  CSimpleMatrix matrix;
  CNewDetectorMatrixConvertor rest(matrix);
  EXPECT_EQ(rest.EndLoad(2, 3), Status::kOk) << "no table, no levels";
  EXPECT_EQ(rest.Resize(2, 0), Status::kOk);
  EXPECT_EQ(rest.EndLoad(2, 0), Status::kOk) << "no rows, no levels";
  EXPECT_EQ(rest.Resize(2, 3), Status::kOk);
  EXPECT_EQ(rest.SetItem(1, 2, 7.0), Status::kOk);
  EXPECT_EQ(rest.EndLoad(2, 2), Status::kOk) << "levels of two rows alone";
  EXPECT_EQ(RowsOf(matrix), (Rows{{0, 0, 0}, {5e6 / 16777216, 0, 0}, {0, 0, 7}}));
  EXPECT_EQ(rest.Resize(2, 3), Status::kOk);
  EXPECT_EQ(RowsOf(rest), (Rows{{0, 0}, {0, 0}, {0, 7}})) << "the same size keeps the values";
  EXPECT_EQ(rest.Resize(2, 4), Status::kOk);
  EXPECT_EQ(RowsOf(rest), Rows(4, {0, 0})) << "another size starts from zero";
}

/// Such a file's digest is worked out while its numbers are read.
TEST(DetectorFile, LargeFilesAreCheckedLikeSmallOnes) {
  constexpr int kRows = 100'000;
  std::string lines = "#VERSION 3\n";
  for (int row = 0; row < kRows; ++row) lines += std::to_string(row) + " 2.5\n";
  std::string content = Signed(lines);
  CSimpleMatrix matrix;
  ASSERT_EQ(LoadDetectorFile(matrix, TempFile(content).Path(), nullptr), Status::kOk);
  EXPECT_EQ(matrix.GetRows(), kRows);
  EXPECT_EQ(matrix.GetItem(0, kRows - 1), kRows - 1);
  content[lines.size() - 2] = '6';
  EXPECT_EQ(LoadDetectorFile(matrix, TempFile(content).Path(), nullptr),
            Status::kInvalidFileFormat);
}

TEST(DetectorFile, FailedLoadKeepsTheTable) {
  const TempFile good(Signed("#VERSION 3\n0 10 20\n10 1 2\n100 3 4\n"));
  const TempFile bad("#VERSION 3\n0 10 20\n10 5 5\n100 5 5\n");
  std::shared_ptr<const DetectorTable> table;
  ASSERT_EQ(LoadDetectorTable(good.Path(), table), Status::kOk);
  EXPECT_EQ(table->Interpolate(10, 2), 3.0) << "level 100 lies at 2";
  const auto previous = table;
  EXPECT_EQ(LoadDetectorTable(bad.Path(), table), Status::kInvalidFileFormat);
  EXPECT_EQ(LoadDetectorTable(bad.Path() + ".missing", table), Status::kCannotOpenFile);
  EXPECT_EQ(table, previous);
}

TEST(DetectorFile, FoldersAreBelowTheCommonFiles) {
  std::vector<std::filesystem::path> folders = os::CommonFilesFolders();
  for (std::filesystem::path& folder : folders) folder += "\\Zentrel Shared\\Detectors\\";
  EXPECT_EQ(GetDetectorFolders(), folders);
}

}  // namespace
