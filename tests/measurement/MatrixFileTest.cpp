#include "measurement/MatrixFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "measurement/Gost341194.h"
#include "tests/measurement/Rows.h"
#include "tests/measurement/TempFile.h"
#include "tests/platform/ResultCode.h"

using namespace measurement;

namespace {

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

const std::string kNul(1, '\0');

const ContentCase kContents[] = {
    {"Empty", "", {}},  //
    {"OnlyHeader", "#A\n!B\n[C]\n", {}},
    {"OnlyWords", "one two\n", {}},
    {"NoLineEndAtTheEnd", "1 2\n3 4", {{1, 2}, {3, 4}}},
    {"CarriageReturns", " 1 2 \r\n\r\n \r\n3 4\r\n", {{1, 2}, {3, 4}}},
    {"AllWhiteSpace", "1\t2\v3\f4\r5\n", {{1, 2, 3, 4, 5}}},
    {"DecimalCommas", "1,5 2,5\n-0,25 1,5e2\n", {{1.5, 2.5}, {-0.25, 150}}},
    {"TwoCommasAreNoNumber", "1,5,2 7\n8\n", {{8}}},
    {"Signs", "+1 -2 +,5 -.5\n", {{1, -2, 0.5, -0.5}}},
    {"TwoSigns", "1 +-2\n", {{1}}},
    {"WordEndsTheLine", "1 2 x 3\n4 5\n", {{1, 2}, {4, 5}}},
    {"NumberWithTailIsAWord", "1 2dB 3\n4\n", {{1}, {4}}},
    {"LineOfWordsTakesNoRow", "1 2\nend of part\n3 4\n", {{1, 2}, {3, 4}}},
    {"TabAloneTakesNoRow", "1\n\t\n2\n", {{1}, {2}}},
    {"InfinityIsNoNumber", "1 inf\n2\n", {{1}, {2}}},
    {"NanIsNoNumber", "nan 1\n2\n", {{2}}},
    {"OverflowIsNoNumber", "1 1e999\n2\n", {{1}, {2}}},
    {"HexadecimalIsNoNumber", "1 0x10\n2\n", {{1}, {2}}},
    {"NulIsNoBlank", "1 2" + kNul + "3\n4\n", {{1}, {4}}},
    {"LongerRow", "1 2\n3 4 5\n", {}},
    {"ShorterRow", "1 2\n3 x\n", {}},
    {"DigestLineIsAHeaderHere", "1\n#CRC 00\n2\n", {{1}, {2}}}};

TEST(MatrixFile, ContentIsRead) {
  for (const auto& [fault, content, rows] : kContents) {
    CSimpleMatrix matrix;
    std::string header = "before";
    EXPECT_EQ(LoadMatrixFile(&matrix, TempFile(content).Path(), &header, 0),
              rows.empty() ? Status::kInvalidFileFormat : Status::kOk)
        << fault;
    EXPECT_EQ(RowsOf(matrix), rows) << fault;
    EXPECT_EQ(header == "before", rows.empty()) << fault << header;
  }
}

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

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

const std::string kBody = "#H 1\n1 2\n\n 3 4 \r\n";
const std::string kDigest = DigestOf("#H 11 23 4");  // trimmed lines, nothing between them

struct DigestCase {
  const char* fault;
  std::string content;
  bool good = false;  // otherwise 0x8004705C
};
const DigestCase kDigests[] = {
    {"Good", kBody + "#CRC " + kDigest + "\r\n", true},
    {"SixthCharacterOn", kBody + "#CRC:  " + kDigest, true},
    {"HeaderMayFollow", kBody + "#CRC " + kDigest + "\n\n!signed\n#CRC 1\n", true},
    {"DataFollows", kBody + "#CRC " + kDigest + "\n5 6\n"},
    {"WordsFollow", kBody + "#CRC " + kDigest + "\nend\n"},
    {"LowerCase", kBody + "#CRC " + Lower(kDigest)},
    {"Missing", kBody},
    {"MarkAlone", kBody + "#CRC"},
    {"NoDigestBehindMark", kBody + "#CRC "},
    {"DigestInFifthPlace", kBody + "#CRC" + kDigest},
    {"CutShort", kBody + "#CRC " + kDigest.substr(0, 62)},
    {"NumberChanged", "#H 1\n1 2\n3 5\n#CRC " + kDigest},
    {"HeaderChanged", "#H 2\n1 2\n3 4\n#CRC " + kDigest},
    {"LineAddedInFront", kBody + "x\n#CRC " + kDigest},
    {"OfNoNumbers", "#H\n#CRC " + DigestOf("#H")}};

TEST(MatrixFile, DigestIsChecked) {
  for (const auto& [fault, content, good] : kDigests) {
    CSimpleMatrix matrix;
    EXPECT_EQ(LoadMatrixFile(&matrix, TempFile(content).Path(), nullptr, kMatrixFileDigest),
              good ? Status::kOk : Status::kInvalidFileFormat)
        << fault;
    EXPECT_EQ(RowsOf(matrix), good ? (Rows{{1, 2}, {3, 4}}) : Rows{}) << fault;
  }
}

TEST(MatrixFile, HeaderEndsAtTheDigestOnlyWhenItIsChecked) {
  const TempFile file(" #A\n\n1\n!B\n#CRC " + DigestOf("#A1!B") + "\n[C\n");
  std::string header;
  ASSERT_EQ(LoadMatrixFile(nullptr, file.Path(), &header, kMatrixFileDigest), Status::kOk);
  EXPECT_EQ(header, "#A\n!B");
  ASSERT_EQ(LoadMatrixFile(nullptr, file.Path(), &header, 0), Status::kOk);
  EXPECT_EQ(header, "#A\n!B\n#CRC " + DigestOf("#A1!B") + "\n[C");
}

class WatchedMatrix : public ICustomMatrix<double> {
 public:
  MOCK_METHOD(Status, Resize, (std::uint32_t columns, std::uint32_t rows), (override));
  MOCK_METHOD(std::uint32_t, GetRows, (), (const, override));
  MOCK_METHOD(std::uint32_t, GetCols, (), (const, override));
  MOCK_METHOD(double, GetItem, (std::uint32_t column, std::uint32_t row), (const, override));
  MOCK_METHOD(Status, SetItem, (std::uint32_t column, std::uint32_t row, double), (override));
  MOCK_METHOD(Status, EndLoad, (std::uint32_t columns, std::uint32_t rows), (override));
};

TEST(MatrixFile, SizeComesFirstThenDerivedDataThenValues) {
  testing::StrictMock<WatchedMatrix> matrix;
  const testing::InSequence order;
  EXPECT_CALL(matrix, Resize(2, 2));
  EXPECT_CALL(matrix, EndLoad(2, 2));
  EXPECT_CALL(matrix, SetItem(0, 0, 7));
  EXPECT_CALL(matrix, SetItem(1, 0, 8));
  EXPECT_CALL(matrix, SetItem(0, 1, 9));
  EXPECT_CALL(matrix, SetItem(1, 1, 10));
  const TempFile file("7 8\nnote\n9 10\n");
  EXPECT_EQ(LoadMatrixFile(&matrix, file.Path(), nullptr, 0), Status::kOk);
}

TEST(MatrixFile, SavedBytes) {
  const CSimpleMatrix matrix = MatrixOf({{1.0 / 3, -2e-9}, {20000, 1e15}});
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
  const TempFile file("as it was");
  for (const double value : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_EQ(SaveMatrixFile(MatrixOf({{value}}), file.Path(), "", 0), Status::kInvalidValue);
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
