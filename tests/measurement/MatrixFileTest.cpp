#include "measurement/MatrixFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "measurement/Gost341194.h"
#include "measurement/SimpleMatrix.h"
#include "tests/measurement/TempFile.h"
#include "tests/platform/ResultCode.h"

using namespace measurement;

namespace {

using testing::ElementsAre;
using Rows = std::vector<std::vector<double>>;

Rows RowsOf(const ICustomMatrix<double>& matrix) {
  Rows rows(matrix.GetRows(), std::vector<double>(matrix.GetCols()));
  for (std::uint32_t row = 0; row < matrix.GetRows(); ++row) {
    for (std::uint32_t column = 0; column < matrix.GetCols(); ++column) {
      rows[row][column] = matrix.GetItem(column, row);
    }
  }
  return rows;
}

std::string DigestOf(std::string_view bytes) {
  Gost341194 hash;
  hash.Update(bytes);
  return ToHexText(hash.Finish());
}

struct ContentCase {
  const char* fault;
  std::string content;
  Rows rows;  // none: 0x8004705C
};

class MatrixContent : public testing::TestWithParam<ContentCase> {};

TEST_P(MatrixContent, IsRead) {
  const TempFile file(GetParam().content);
  CSimpleMatrix matrix;
  std::string header = "before";
  const Status result = LoadMatrixFile(&matrix, file.Path(), &header, 0);
  EXPECT_EQ(result, GetParam().rows.empty() ? Status::kInvalidFileFormat : Status::kOk);
  EXPECT_EQ(RowsOf(matrix), GetParam().rows);
  EXPECT_EQ(header == "before", GetParam().rows.empty()) << header;
}

const std::string kNul(1, '\0');

INSTANTIATE_TEST_SUITE_P(
    Lines, MatrixContent,
    testing::Values(
        ContentCase{"Empty", "", {}},  //
        ContentCase{"OnlyHeader", "#A\n!B\n[C]\n", {}}, ContentCase{"OnlyWords", "one two\n", {}},
        ContentCase{"NoLineEndAtTheEnd", "1 2\n3 4", {{1, 2}, {3, 4}}},
        ContentCase{"CarriageReturns", " 1 2 \r\n\r\n \r\n3 4\r\n", {{1, 2}, {3, 4}}},
        ContentCase{"AllWhiteSpace", "1\t2\v3\f4\r5\n", {{1, 2, 3, 4, 5}}},
        ContentCase{"DecimalCommas", "1,5 2,5\n-0,25 1,5e2\n", {{1.5, 2.5}, {-0.25, 150}}},
        ContentCase{"TwoCommasAreNoNumber", "1,5,2 7\n8\n", {{8}}},
        ContentCase{"Signs", "+1 -2 +,5 -.5\n", {{1, -2, 0.5, -0.5}}},
        ContentCase{"TwoSigns", "1 +-2\n", {{1}}},
        ContentCase{"WordEndsTheLine", "1 2 x 3\n4 5\n", {{1, 2}, {4, 5}}},
        ContentCase{"NumberWithTailIsAWord", "1 2dB 3\n4\n", {{1}, {4}}},
        ContentCase{"LineOfWordsTakesNoRow", "1 2\nend of part\n3 4\n", {{1, 2}, {3, 4}}},
        ContentCase{"TabAloneTakesNoRow", "1\n\t\n2\n", {{1}, {2}}},
        ContentCase{"InfinityIsNoNumber", "1 inf\n2\n", {{1}, {2}}},
        ContentCase{"NanIsNoNumber", "nan 1\n2\n", {{2}}},
        ContentCase{"OverflowIsNoNumber", "1 1e999\n2\n", {{1}, {2}}},
        ContentCase{"HexadecimalIsNoNumber", "1 0x10\n2\n", {{1}, {2}}},
        ContentCase{"NulIsNoBlank", "1 2" + kNul + "3\n4\n", {{1}, {4}}},
        ContentCase{"LongerRow", "1 2\n3 4 5\n", {}}, ContentCase{"ShorterRow", "1 2\n3 x\n", {}},
        ContentCase{"DigestLineIsAHeaderHere", "1\n#CRC 00\n2\n", {{1}, {2}}}),
    [](const auto& tested) { return tested.param.fault; });

TEST(MatrixFile, FolderAndMissingFileCannotBeOpened) {
  for (const auto& path : {std::filesystem::temp_directory_path(),
                           std::filesystem::temp_directory_path() / "no such file.det"}) {
    EXPECT_EQ(LoadMatrixFile(nullptr, path.string(), nullptr, 0), Status::kCannotOpenFile) << path;
  }
}

TEST(MatrixFile, CommaLocaleChangesNothing) {
  const std::string previous = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"Russian", "ru_RU.UTF-8", "de_DE.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) break;
  }
  const TempFile file("1.5 2,5\n");
  CSimpleMatrix matrix;
  const Status loaded = LoadMatrixFile(&matrix, file.Path(), nullptr, 0);
  const TempFile copy;
  const Status saved = SaveMatrixFile(matrix, copy.Path(), "", 0);
  std::setlocale(LC_ALL, previous.c_str());
  EXPECT_EQ(loaded, Status::kOk);
  EXPECT_EQ(saved, Status::kOk);
  EXPECT_EQ(RowsOf(matrix), (Rows{{1.5, 2.5}}));
  EXPECT_EQ(copy.Content(), "1.5\t2.5\n");
}

struct DigestCase {
  const char* fault;
  std::string content;
  ResultCode result;
};

class MatrixDigest : public testing::TestWithParam<DigestCase> {};

TEST_P(MatrixDigest, IsChecked) {
  const TempFile file(GetParam().content);
  CSimpleMatrix matrix;
  EXPECT_EQ(LoadMatrixFile(&matrix, file.Path(), nullptr, kMatrixFileDigest), GetParam().result);
  EXPECT_EQ(RowsOf(matrix), GetParam().result == Status::kOk ? (Rows{{1, 2}, {3, 4}}) : Rows{});
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

const std::string kBody = "#H 1\n1 2\n\n 3 4 \r\n";
const std::string kDigest = DigestOf("#H 11 23 4");  // trimmed lines, nothing between them

INSTANTIATE_TEST_SUITE_P(
    Lines, MatrixDigest,
    testing::Values(
        DigestCase{"Good", kBody + "#CRC " + kDigest + "\r\n", Status::kOk},
        DigestCase{"SixthCharacterOn", kBody + "#CRC:  " + kDigest, Status::kOk},
        DigestCase{"HeaderMayFollow", kBody + "#CRC " + kDigest + "\n\n!signed\n#CRC 1\n",
                   Status::kOk},
        DigestCase{"DataFollows", kBody + "#CRC " + kDigest + "\n5 6\n",
                   Status::kInvalidFileFormat},
        DigestCase{"WordsFollow", kBody + "#CRC " + kDigest + "\nend\n",
                   Status::kInvalidFileFormat},
        DigestCase{"LowerCase", kBody + "#CRC " + Lower(kDigest), Status::kInvalidFileFormat},
        DigestCase{"Missing", kBody, Status::kInvalidFileFormat},
        DigestCase{"MarkAlone", kBody + "#CRC", Status::kInvalidFileFormat},
        DigestCase{"NoDigestBehindMark", kBody + "#CRC ", Status::kInvalidFileFormat},
        DigestCase{"DigestInFifthPlace", kBody + "#CRC" + kDigest, Status::kInvalidFileFormat},
        DigestCase{"CutShort", kBody + "#CRC " + kDigest.substr(0, 62), Status::kInvalidFileFormat},
        DigestCase{"NumberChanged", "#H 1\n1 2\n3 5\n#CRC " + kDigest, Status::kInvalidFileFormat},
        DigestCase{"HeaderChanged", "#H 2\n1 2\n3 4\n#CRC " + kDigest, Status::kInvalidFileFormat},
        DigestCase{"LineAddedInFront", kBody + "x\n#CRC " + kDigest, Status::kInvalidFileFormat},
        DigestCase{"OfNoNumbers", "#H\n#CRC " + DigestOf("#H"), Status::kInvalidFileFormat}),
    [](const auto& tested) { return tested.param.fault; });

TEST(MatrixFile, HeaderEndsAtTheDigestOnlyWhenItIsChecked) {
  const TempFile file(" #A\n\n1\n!B\n#CRC " + DigestOf("#A1!B") + "\n[C\n");
  std::string header;
  ASSERT_EQ(LoadMatrixFile(nullptr, file.Path(), &header, kMatrixFileDigest), Status::kOk);
  EXPECT_EQ(header, "#A\n!B");
  ASSERT_EQ(LoadMatrixFile(nullptr, file.Path(), &header, 0), Status::kOk);
  EXPECT_EQ(header, "#A\n!B\n#CRC " + DigestOf("#A1!B") + "\n[C");
}

class CallOrder final : public ICustomMatrix<double> {
 public:
  Status Resize(std::uint32_t columns, std::uint32_t rows) override {
    return Note("resize", columns, rows);
  }
  [[nodiscard]] std::uint32_t GetRows() const override { return 0; }
  [[nodiscard]] std::uint32_t GetCols() const override { return 0; }
  [[nodiscard]] double GetItem(std::uint32_t, std::uint32_t) const override { return 0; }
  Status SetItem(std::uint32_t column, std::uint32_t row, double) override {
    return Note("set", column, row);
  }
  Status EndLoad(std::uint32_t columns, std::uint32_t rows) override {
    return Note("end load", columns, rows);
  }
  Status Note(const char* call, std::uint32_t a, std::uint32_t b) {
    calls.push_back(std::string(call) + " " + std::to_string(a) + " " + std::to_string(b));
    return Status::kOk;
  }
  std::vector<std::string> calls;
};

TEST(MatrixFile, SizeComesFirstThenDerivedDataThenValues) {
  const TempFile file("7 8\n9 10\nnote\n11 12\n");
  CallOrder matrix;
  ASSERT_EQ(LoadMatrixFile(&matrix, file.Path(), nullptr, 0), Status::kOk);
  EXPECT_THAT(matrix.calls, ElementsAre("resize 2 3", "end load 2 3", "set 0 0", "set 1 0",
                                        "set 0 1", "set 1 1", "set 0 2", "set 1 2"));
}

TEST(MatrixFile, SavedBytes) {
  CSimpleMatrix matrix;
  matrix.Resize(2, 2);
  matrix.SetItem(0, 0, 1.0 / 3);
  matrix.SetItem(1, 0, -2e-9);
  matrix.SetItem(0, 1, 20000);
  matrix.SetItem(1, 1, 1e15);
  const TempFile file;
  ASSERT_EQ(
      SaveMatrixFile(matrix, file.Path(), " #VERSION 3\r\n\n#CRC 12\n!note ", kMatrixFileDigest),
      Status::kOk);
  const std::string rows[] = {"0.3333333333333\t-2e-09", "20000\t1e+15"};
  EXPECT_EQ(file.Content(), "#VERSION 3\n!note\n" + rows[0] + "\n" + rows[1] + "\n\n#CRC " +
                                DigestOf("#VERSION 3!note" + rows[0] + rows[1]));
  CSimpleMatrix read_back;
  EXPECT_EQ(LoadMatrixFile(&read_back, file.Path(), nullptr, kMatrixFileDigest), Status::kOk);
  EXPECT_EQ(RowsOf(read_back), (Rows{{0.3333333333333, -2e-9}, {20000, 1e15}}));
  std::string exact;
  EXPECT_EQ(ComposeMatrixFile(matrix, "", kMatrixFileExact, exact), Status::kOk);
  EXPECT_EQ(exact, "0.33333333333333331\t-2e-09\n20000\t1e+15\n");
}

TEST(MatrixFile, ValuesThatCouldNotBeReadBackAreNotWritten) {
  CSimpleMatrix matrix;
  matrix.Resize(1, 1);
  const TempFile file("as it was");
  for (const double value : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    matrix.SetItem(0, 0, value);
    EXPECT_EQ(SaveMatrixFile(matrix, file.Path(), "", 0), Status::kInvalidValue);
  }
  EXPECT_EQ(file.Content(), "as it was");
  EXPECT_EQ(SaveMatrixFile(CSimpleMatrix(), file.Path() + "/no/folder", "", 0),
            Status::kCannotOpenFile);
}

TEST(MatrixFile, HeaderValues) {
  const std::string header = "!VERSION 1\n#VERSIONS 5\n#VERSION 3 \n#NAME\n#VERSION 4";
  EXPECT_EQ(GetHeaderValue(header, "VERSIONS", "0"), "5");
  EXPECT_EQ(GetHeaderValue(header, "VERSION", "0"), "S 5") << "kept: a key is only a beginning";
  EXPECT_EQ(GetHeaderValue(header, "VERSION ", "0"), "3");
  EXPECT_EQ(GetHeaderValue(header, "NAME", "x"), "");
  EXPECT_EQ(GetHeaderValue(header, "version", "0"), "0");
  EXPECT_EQ(GetHeaderValue("", "", "none"), "none");
}

/// Long enough that a digest would be worked out beside the reading.
TEST(MatrixFile, ALongFileIsReadWithoutAskingForADigest) {
  constexpr std::uint32_t kRows = 60'000;
  std::string text;
  for (std::uint32_t row = 0; row < kRows; ++row) text += "1 2 3\n";
  const TempFile file(text);
  CSimpleMatrix matrix;
  EXPECT_EQ(LoadMatrixFile(&matrix, file.Path(), nullptr, 0), 0);
  EXPECT_EQ(matrix.GetRows(), kRows);
}

}  // namespace
