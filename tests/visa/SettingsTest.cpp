#include <chrono>

#include "tests/visa/SettingsFixture.h"

namespace {

using std::chrono::steady_clock;

TEST_F(VisaSettings, TheFirstSectionThatMatchesTheNameIsInForceAlone) {
  const std::string port = peer.Port();
  const struct {
    const char* label;
    std::string text;
    std::string section;
    bool keeps_alive = false;
  } rows[] = {
      {"empty", "", ""},
      {"everything", "[*]\nkeep-alive = on", "*", true},
      {"the full name", "[tcpip0::127.0.0.1::" + port + "::socket]\r\nKeep-Alive=ON\r\n",
       "tcpip0::127.0.0.1::" + port + "::socket", true},
      {"board left out", " [ TCPIP::127.0.0.1::" + port + "::SOCKET ] ",
       "TCPIP::127.0.0.1::" + port + "::SOCKET"},
      {"brackets of IPv6 addresses", "[TCPIP::[127.0.0.1]::*]", "TCPIP::[127.0.0.1]::*"},
      {"another board", "[TCPIP1::*]\nkeep-alive = on", ""},
      {"a part of it", "[TCPIP0::127.0.0.1::]\n[127.0.0.1]\n[*::SOCKE]\n[?]", ""},
      {"one character a mark", "[?CPIP0::127.0.?.1::*::S?????]", "?CPIP0::127.0.?.1::*::S?????"},
      {"stars that have to go back", "[*0*0*1::*O*KET*]", "*0*0*1::*O*KET*"},
      {"special before general",
       "[*::1::SOCKET]\n[*127*]\n[*]\nkeep-alive = on\n[*127*]\nkeep-alive=on", "*127*"},
      {"the last word counts", "\xEF\xBB\xBF[*]\nkeep-alive = on\nkeep-alive = off", "*", false},
      {"keys behind what is no section", "[*]\n[x\nkeep-alive = on", "*", false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.label);
    const ViSession session = OpenWith(row.text);
    EXPECT_EQ(Text(session, VI_ATTR_ZENTREL_SETTINGS_SECTION), row.section);
    EXPECT_EQ(Text(session, VI_ATTR_ZENTREL_SETTINGS_FILE), file_.string());
    EXPECT_EQ(Number<ViUInt16>(session, VI_ATTR_TCPIP_KEEPALIVE), row.keeps_alive ? 1 : 0);
    EXPECT_STATUS(visa.viClose(session), VI_SUCCESS);
  }
  ViSession session = 0;
  WriteFile(file_, "[*]\nkeep-alive = on");
  EXPECT_STATUS(Open(peer.Name(), 0, session), VI_SUCCESS);
  EXPECT_EQ(Number<ViUInt16>(session, VI_ATTR_TCPIP_KEEPALIVE), 0) << "not asked to load settings";
}

TEST_F(VisaSettings, LinesThatMakeNoSenseAreToldAndChangeNothing) {
  const ViSession session = OpenWith(
      "# comment\n"
      "; another\n"
      "keep-alive = on\n"
      "\n"
      "[*]\n"
      "no-delay = off\n"
      "no-delay = maybe\x1B\n"
      "read-ceiling = 19\n"
      "read-ceiling = 3600001\n"
      "read-ceiling = 50 ms\n"
      "read-ceiling\n"
      "colour = red\n"
      "[]\n"
      "trace-data = -1\n"
      "[TCPIP::elsewhere::*]\n"
      "keep-alive-probes = 128\n"
      "trace-size = 63\n"
      "keep-alive-idle = 0\n"
      "keep-alive-interval = 32768\n"
      "connect-ceiling = 19\n" +
      std::string(56, 'x') + "\xE2\x82\xAC\xE2\x82\xAC\n");
  EXPECT_EQ(Number<ViUInt16>(session, VI_ATTR_TCPIP_NODELAY), 0);
  const std::vector<std::string> problems = {
      "line 3: no [section] before it: keep-alive = on",
      "line 7: neither on nor off: maybe?",
      "line 8: not a number from 20 to 3600000: 19",
      "line 9: not a number from 20 to 3600000: 3600001",
      "line 10: not a number from 20 to 3600000: 50 ms",
      "line 11: neither [section] nor key = value: read-ceiling",
      "line 12: no such key: colour",
      "line 13: no [pattern of a resource name]: []",
      "line 14: not a number from 0 to 1048576: -1",
      "line 16: not a number from 1 to 127: 128",
      "line 17: not a number from 64 to 4194304: 63",
      "line 18: not a number from 1 to 32767: 0",
      "line 19: not a number from 1 to 32767: 32768",
      "line 20: not a number from 20 to 3600000: 19",
      "line 21: neither [section] nor key = value: " + std::string(56, 'x') + "\xE2\x82\xAC...",
  };
  EXPECT_EQ(Problems(), problems);
  EXPECT_STATUS(visa.viGetAttribute(manager, VI_ATTR_ZENTREL_SETTINGS_PROBLEM, nullptr),
                VI_ERROR_USER_BUF);
  EXPECT_STATUS(visa.viSetAttribute(manager, VI_ATTR_ZENTREL_SETTINGS_FILE, 0),
                VI_ERROR_ATTR_READONLY);

  std::string many = "[*]\n";
  for (int i = 0; i < 60; ++i) many += "nonsense\n";
  WriteFile(file_, many);
  EXPECT_EQ(Problems().size(), 51U);
  EXPECT_EQ(Problems().back(), "and 10 more");
  WriteFile(file_, std::string((1 << 20) + 1, '\n'));
  EXPECT_EQ(Problems(),
            std::vector<std::string>{"the file cannot be read, or is larger than 1 MiB"});
}

TEST_F(VisaSettings, AFileThatCannotBeReadFailsNoOpen) {
  std::filesystem::create_directory(file_);
  ViSession session = 0;
  EXPECT_STATUS(Open(peer.Name(), 5, session), VI_SUCCESS);
  EXPECT_EQ(Problems().size(), 1U);
  std::filesystem::remove(file_);
  EXPECT_EQ(Problems().size(), 1U) << "the one that is named does not exist";
  EXPECT_EQ(Text(manager, VI_ATTR_ZENTREL_SETTINGS_FILE), file_.string());
}

TEST_F(VisaSettings, TheReadCeilingBoundsEachReadWhateverTheTimeOut) {
  for (const ViUInt32 timeout : {60000, 1}) {
    const ViSession session = OpenWith("[*]\nread-ceiling = 40");
    auto instrument = peer.Accept();
    EXPECT_STATUS(visa.viSetAttribute(session, VI_ATTR_TMO_VALUE, timeout), VI_SUCCESS);
    asio::write(instrument, asio::buffer("abc", 3));
    const auto before = steady_clock::now();
    std::string text;
    EXPECT_STATUS(Read(session, 10, text), VI_ERROR_TMO);
    EXPECT_EQ(text, "abc");
    const auto passed = steady_clock::now() - before;
    EXPECT_GE(passed, std::chrono::milliseconds(timeout == 1 ? 1 : 40));
    EXPECT_LT(passed, std::chrono::seconds(20));
    EXPECT_STATUS(visa.viClose(session), VI_SUCCESS);
  }
}

TEST_F(VisaSettings, TheConnectCeilingBoundsTheAttemptAsTheTimeOutDoes) {
  const FullListener listener;
  for (const auto& [settings, timeout] : {std::pair("[*]\nconnect-ceiling = 50", 60000U),
                                          {"[*]\nconnect-ceiling = 60000", 50U},
                                          {"", 50U}}) {
    WriteFile(file_, settings);
    const auto before = steady_clock::now();
    ViSession session = 9;
    EXPECT_STATUS(Open(listener.Name(), VI_LOAD_CONFIG, session, timeout), VI_ERROR_TMO);
    EXPECT_LT(steady_clock::now() - before, std::chrono::seconds(20)) << settings;
    EXPECT_EQ(session, 0U);
  }
}

}  // namespace
