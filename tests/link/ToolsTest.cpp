// The parts that need no instrument: parameter codec, texts, resource names, named values.
#include <cmath>
#include <stdexcept>

#include "K4NHardWare/ErrorText.h"
#include "K4NHardWare/HardWareParametr.h"
#include "K4NHardWare/ParamsListOwner.h"
#include "K4NHardWare/ResourceName.h"
#include "tests/link/LinkFixture.h"

namespace {

using testing::ThrowsMessage;

TEST(HardWareParametrTest, RoundTrips) {
  struct Case {
    const char* name;
    std::uint32_t size, fractional_bytes;
    bool is_signed;
    double written;
    const char* bytes;
    double read;
  };
  const Case rows[] = {
      {"TwoFractionalBytes", 4, 2, true, -1.5, "00 80 FE FF", -1.5},
      {"OneFractionalByte", 2, 1, true, 127.99609375, "FF 7F", 127.99609375},
      {"FractionMakesSigned", 2, 1, false, -0.00390625, "FF FF", -0.00390625},
      {"SixByteSign", 6, 2, true, -10.5, "00 80 F5 FF FF FF", -10.5},
      {"HalfRoundsUp", 4, 0, true, 0.5, "01 00 00 00", 1},
      {"MinusHalfRoundsDown", 4, 0, true, -0.5, "FF FF FF FF", -1},
      {"TwoAndAHalfRoundsAwayFromZero", 4, 0, false, 2.5, "03 00 00 00", 3},
      {"NearlyMinusHalfIsZero", 4, 0, true, -0.49, "00 00 00 00", 0},
      {"UnsignedTopBit", 4, 0, false, 4294967295.0, "FF FF FF FF", 4294967295.0},
      {"UnsignedSixBytes", 6, 0, false, 281474976710655.0, "FF FF FF FF FF FF", 281474976710655.0},
      {"TooLargeIsCut", 1, 0, false, 257, "01", 1},
      {"TooLargeForSignedIsCut", 2, 0, true, 32768, "00 80", -32768},
      {"BeyondSixtyFourBits", 4, 0, false, 1e300, "00 00 00 00", 0},
      {"NotANumber", 4, 2, true, std::nan(""), "00 00 00 00", 0}};
  for (const Case& row : rows) {
    HardWareParametr parameter({.identifier = 0x5C,
                                .element_count = 2,
                                .element_size = row.size,
                                .fractional_bytes = row.fractional_bytes,
                                .is_signed = row.is_signed});
    parameter.SetValue(row.written, 1);
    const std::string zeros = ToHex(Bytes(row.size));
    EXPECT_EQ(ToHex(parameter.Serialise()), "5C 00 " + zeros + " " + row.bytes) << row.name;
    EXPECT_EQ(parameter.GetValue(0), 0.0) << row.name;
    EXPECT_EQ(parameter.GetValue(1), row.read) << row.name;
  }
}

TEST(HardWareParametrTest, HeaderBytesOfLayouts) {
  const HardWareParametr wide(
      {.identifier = 79, .element_count = 8, .element_size = 6, .fractional_bytes = 2});
  EXPECT_EQ(wide.type_code(), 0x62);
  EXPECT_EQ(wide.count_byte(), 8);
  EXPECT_EQ(wide.PayloadSize(), 50U);
  const HardWareParametr many({.identifier = 26, .element_count = 259, .element_size = 2});
  EXPECT_EQ(many.count_byte(), 3);
}

TEST(HardWareParametrTest, ImageTakesIdentifierAndWholeElementsOnly) {
  HardWareParametr parameter({.identifier = 4, .element_count = 2, .element_size = 2});
  parameter.Deserialise(std::array<std::uint8_t, 5>{0x11, 0x01, 0x34, 0x12, 0xFF});
  EXPECT_EQ(parameter.identifier(), 0x111);
  EXPECT_EQ(ToHex(parameter.Serialise()), "11 00 34 12 00 00");
  parameter.Deserialise(std::array<std::uint8_t, 8>{4, 0, 1, 0, 2, 0, 3, 0});
  EXPECT_EQ(ToHex(parameter.Serialise()), "04 00 01 00 02 00");
  parameter.Deserialise(std::array<std::uint8_t, 1>{9});
  EXPECT_EQ(parameter.identifier(), 4);
}

TEST(HardWareParametrTest, ElementOutsideThrows) {
  HardWareParametr parameter({.identifier = 4, .element_count = 2, .element_size = 2});
  EXPECT_THROW(static_cast<void>(parameter.GetValue(2)), std::out_of_range);
  EXPECT_THROW(parameter.SetValue(0, 2), std::out_of_range);
}

TEST(ProtocolMessageTest, FullBodyThrows) {
  ProtocolMessage message;
  message.Begin(Command::kWriteParameter);
  message.Append(Bytes(7000));
  EXPECT_THAT([&] { message.Append(std::array<std::uint8_t, 1>{}); },
              ThrowsMessage<std::exception>("Debug: Message too long. ProtocolMessage::Append"));
}

TEST(ErrorTextTest, Texts) {
  const std::pair<std::uint32_t, const char*> rows[] = {{10053, "Connection aborted"},
                                                        {10054, "Connection closed"},
                                                        {10038, "Invalid socket handle"},
                                                        {10057, "Instrument not connected"},
                                                        {10065, "Host unreachable"},
                                                        {0x12342749, "Instrument not connected"},
                                                        {0xFFFF8000, "Unknown error: 32768(8000)"},
                                                        {0xBFFF0037, "Unknown error: 55(37)"},
                                                        {0, "Unknown error: 0(0)"},
                                                        {0x80047060, "Unknown error: 28768(7060)"}};
  for (const auto& [code, text] : rows) EXPECT_EQ(ErrorText(static_cast<Status>(code)), text);
}

TEST(ResourceNameTest, Pieces) {
  struct Case {
    const char* text;
    ResultCode result;
    std::uint32_t board;
    const char* host;
    std::uint32_t port;
  };
  for (const Case& row :
       {Case{"TCPIP0::hostA::5025::SOCKET", 0, 0, "hostA", 5025},
        Case{"TCPIP::hostA::5025::SOCKET", 0, 0, "hostA", 5025},
        Case{"TCPIP12::hostA", 0, 12, "hostA", 8888}, Case{"TCPIP3", 0, 3, "", 8888},
        Case{"TCPIP::a:b::1", 0, 0, "a:b", 1}, Case{"GPIB0::1::INSTR", 26209, 0, "", 0},
        Case{"tcpip::h::1::SOCKET", 26209, 0, "", 0}, Case{"", 26209, 0, "", 0},
        Case{"TCPIPX0::h", 26209, 0, "", 0}, Case{"TCPIP::h::50a::SOCKET", 26210, 0, "", 0},
        Case{"TCPIP::h::::SOCKET", 26210, 0, "", 0}, Case{"TCPIP::h::-1", 26210, 0, "", 0},
        Case{"TCPIP::h::5025::INSTR", 26208, 0, "", 0},
        Case{"TCPIP::h::5025::socket", 26208, 0, "", 0},
        Case{"TCPIP::h::5025::SOCKET::", 26212, 0, "", 0},
        Case{"TCPIP::h::99999999999::SOCKET", 0, 0, "h", 4294967295U}}) {
    ResourceName name{.host = "before", .board = 1, .port = 2};
    EXPECT_EQ(ParseResourceName(row.text, name), row.result) << row.text;
    EXPECT_EQ(name.host, row.result == Status::kOk ? row.host : "before") << row.text;
    EXPECT_EQ(name.board, row.result == Status::kOk ? row.board : 1) << row.text;
    EXPECT_EQ(name.port, row.result == Status::kOk ? row.port : 2) << row.text;
  }
}

TEST(ResourceNameTest, HostAndPort) {
  std::string host;
  std::uint32_t port = 0;
  SplitHostPort("hostA:5025:1", host, port);
  EXPECT_EQ(host, "hostA");
  EXPECT_EQ(port, 5025U);
  SplitHostPort("hostA", host, port);
  EXPECT_EQ(host, "hostA");
  EXPECT_EQ(port, 8888U);
}

TEST(ParamsListOwnerTest, FirstOfANameCountsAndHearsOnlyChanges) {
  uFilterParams::ParamsListOwner owner;
  int changes = 0;
  owner.Add({"a", 1.0, [&](const uFilterParams::ParamValue&) { ++changes; }});
  owner.Add({"a", 2.0, {}});
  owner.SetValue("a", 1.0);
  EXPECT_EQ(changes, 0);
  owner.SetValue("a", std::string("text"));
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(owner.GetValue("a"), uFilterParams::ParamValue(std::string("text")));
}

TEST(ParamsListOwnerTest, UnknownNameThrows) {
  uFilterParams::ParamsListOwner owner;
  const std::string text = "Debug. WrongParametrName. uFilterParams::ParamsListOwner::";
  EXPECT_THAT([&] { owner.SetValue("a", 1.0); }, ThrowsMessage<std::exception>(text + "SetValue"));
  EXPECT_THAT([&] { owner.GetValue("a"); }, ThrowsMessage<std::exception>(text + "GetValue"));
}

}  // namespace
