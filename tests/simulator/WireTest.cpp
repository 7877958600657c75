#include "simulator/Wire.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/link/Hex.h"

namespace simulator {
namespace {

TEST(RequestParser, TakesRequestsBehindRubbishHoweverTheBytesCome) {
  const Bytes stream = FromHex(
      "00 AA AA 54 55 | AA 55 03 00 00 80 04 00 01 10 00 00 04 03 02 01 | 04 00 08 00 |"
      "AA 55 06 00 00 80 00 00 00 41 00 00 02 00 00 00");
  for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
    RequestParser parser;
    std::vector<std::string> requests;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
      parser.Feed(std::span(stream).subspan(at, std::min(piece, stream.size() - at)));
      while (auto request = parser.Next()) requests.push_back(ToHex(EncodeAnswer(*request)));
    }
    EXPECT_THAT(requests,
                testing::ElementsAre("AA 55 03 00 00 80 04 00 01 10 00 00 04 03 02 01 04 00 08 00",
                                     "AA 55 06 00 00 80 00 00 00 41 00 00 02 00 00 00"))
        << "pieces of " << piece;
  }
}

TEST(EncodeAnswer, HasTheHeaderOfTheWireAndNeverAnnouncesOtherThanItSends) {
  Message answer{3, status::kUnknownForm, 2, 0x42, 0x11223344, FromHex("01 02 03")};
  EXPECT_EQ(ToHex(EncodeAnswer(answer)),
            "AA 55 03 00 03 80 03 00 02 42 00 00 44 33 22 11 01 02 03");
  answer.body.resize(70000);
  EXPECT_EQ(EncodeAnswer(answer).size(), kHeaderSize + 0xFFFF);
}

TEST(Elements, FixedPointBothWays) {
  struct Case {
    const char* name;
    std::uint8_t type;
    bool is_signed;
    double value;
    const char* bytes;
    double read_back;
  };
  const Case cases[] = {
      {"negative fraction", 0x42, true, -1.5, "00 80 FE FF", -1.5},
      {"half up", 0x10, false, 0.5, "01", 1.0},
      {"half away from zero", 0x10, true, -0.5, "FF", -1.0},
      {"six bytes", 0x60, true, 20e9, "00 C8 17 A8 04 00", 20e9},
      {"six bytes negative", 0x60, true, -8e6, "00 EE 85 FF FF FF", -8e6},
      {"six bytes unsigned", 0x60, false, 281474976710655.0, "FF FF FF FF FF FF",
       281474976710655.0},
      {"one byte of fraction", 0x21, true, -60.0, "00 C4", -60.0},
      {"too large", 0x20, false, 70000.0, "FF FF", 65535.0},
      {"below an unsigned one", 0x20, false, -1.0, "00 00", 0.0},
      {"too small", 0x42, true, -40000.0, "00 00 00 80", -32768.0},
  };
  for (const Case& row : cases) {
    const auto format = ElementFormat::FromType(row.type, row.is_signed);
    ASSERT_TRUE(format) << row.name;
    Bytes bytes;
    AppendElements(bytes, *format, std::vector{row.value});
    EXPECT_EQ(ToHex(bytes), row.bytes) << row.name;
    EXPECT_EQ(DecodeElements(bytes, *format), std::vector{row.read_back}) << row.name;
  }
}

TEST(Elements, TypeCodesWithoutAMeaningAreRefused) {
  for (const unsigned code : {0x00, 0x01, 0x11, 0x43, 0x90, 0xFF}) {
    EXPECT_FALSE(ElementFormat::FromType(static_cast<std::uint8_t>(code), false)) << code;
  }
}

}  // namespace
}  // namespace simulator
