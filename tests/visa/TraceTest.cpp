#include <chrono>
#include <ctime>
#include <numeric>
#include <thread>

#include "tests/visa/TraceFixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string Now() {
  // Not std::time, which lags a few milliseconds behind the clock of the lines.
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", std::gmtime(&now));
  return text.data();
}

TEST_F(VisaTrace, EachCallIsALine) {
  const std::string before = Now();
  ViSession session = 0;
  ASSERT_EQ(Open(peer.Name(), 0, session, 1234), VI_SUCCESS);
  auto instrument = peer.Accept();
  visa.viSetAttribute(session, VI_ATTR_TMO_VALUE, 30);
  visa.viSetAttribute(session, 0x3FFF0FFF, 1);
  ViUInt32 timeout = 0;
  visa.viGetAttribute(session, VI_ATTR_TMO_VALUE, &timeout);
  std::array<char, 256> text{};
  visa.viGetAttribute(session, VI_ATTR_TCPIP_HOSTNAME, text.data());
  visa.viGetAttribute(session, VI_ATTR_USER_DATA, nullptr);
  Write(session, {"\xAA\x55\x00\xFF", 4});
  asio::write(instrument, asio::buffer("abc", 3));
  std::string got;
  Read(session, 10, got);
  Read(session, 0, got);
  visa.viClear(session);
  visa.viLock(session, VI_EXCLUSIVE_LOCK, 7, nullptr, nullptr);
  ViUInt32 count = 0;
  visa.viReadToFile(session, "no \"such\\\n\xC3\xA9/file", 9, &count);
  visa.viFlush(session, 5);
  visa.viSetBuf(session, VI_WRITE_BUF, 9);
  visa.viStatusDesc(session, static_cast<ViStatus>(0xBFFF0099), text.data());
  visa.viParseRsrc(manager, nullptr, nullptr, nullptr);
  visa.viFindRsrc(manager, "?*", nullptr, nullptr, nullptr);
  visa.viDisableEvent(session, 0x3FFF7FFF, 0xFFFF);
  visa.module.FunctionOf<ViStatus(ViSession)>("viPrintf")(session);
  visa.viClose(session);
  visa.viClose(session);
  visa.viClose(0);
  const std::string after = Now();

  const std::string m = std::to_string(manager);
  const std::string s = std::to_string(session);
  const std::vector<std::string> lines = Lines(trace_file_);
  EXPECT_THAT(
      Cores(trace_file_),
      ElementsAre(
          StartsWith("- note - - text=\"trace by zevisa64 1.2.0 in visa_test"),
          "- viOpenDefaultRM - VI_SUCCESS opened=" + m,
          m + " viOpen - VI_SUCCESS resource=\"" + peer.Name() +
              "\" mode=0 timeout=1234 opened=" + s,
          s + " viSetAttribute - VI_SUCCESS attribute=VI_ATTR_TMO_VALUE value=30",
          s + " viSetAttribute - VI_ERROR_NSUP_ATTR attribute=0x3FFF0FFF value=1",
          s + " viGetAttribute - VI_SUCCESS attribute=VI_ATTR_TMO_VALUE value=30",
          s + " viGetAttribute - VI_SUCCESS attribute=VI_ATTR_TCPIP_HOSTNAME value=\"127.0.0.1\"",
          s + " viGetAttribute - VI_ERROR_USER_BUF attribute=VI_ATTR_USER_DATA",
          s + " viWrite 4/4 VI_SUCCESS data=aa5500ff", s + " viRead 3/10 VI_ERROR_TMO data=616263",
          s + " viRead 0/0 VI_SUCCESS data=", s + " viClear - VI_SUCCESS",
          s + " viLock - VI_SUCCESS type=1 timeout=7",
          s + " viReadToFile 0/9 VI_ERROR_FILE_ACCESS "
              "file=\"no \\\"such\\\\\\x0a\\xc3\\xa9/file\"",
          s + " viFlush - VI_ERROR_INV_MASK mask=5", s + " viSetBuf - VI_SUCCESS mask=2 size=9",
          s + " viStatusDesc - VI_WARN_UNKNOWN_STATUS code=0xBFFF0099",
          m + " viParseRsrc - VI_ERROR_INV_RSRC_NAME resource=\"\"",
          m + " viFindRsrc - VI_ERROR_RSRC_NFOUND expression=\"?*\"",
          s + " viDisableEvent - VI_SUCCESS_EVENT_DIS", s + " viPrintf - VI_ERROR_NSUP_OPER",
          s + " viClose - VI_SUCCESS", s + " viClose - VI_ERROR_INV_OBJECT",
          "- viClose - VI_WARN_NULL_OBJECT"));
  for (const std::string& line : lines) {
    EXPECT_TRUE(line.substr(0, before.size()) >= before && line.substr(0, after.size()) <= after)
        << line;
  }
  std::smatch waited;
  ASSERT_TRUE(std::regex_match(lines[9], waited, std::regex(".* viRead 3/10 (\\d+) .*")));
  EXPECT_GE(std::stoi(waited[1]), 30000) << "microseconds";
  EXPECT_LT(std::stoi(waited[1]), 10000000);
}

TEST_F(VisaTrace, TheSettingsBoundTheDataThatALineShows) {
  for (const auto& [bound, shown] : {std::pair(0, "..."), {3, "616263..."}, {4, "61626364"}}) {
    const ViSession session = OpenWith("[*]\ntrace-data = " + std::to_string(bound));
    EXPECT_STATUS(Write(session, "abcd"), VI_SUCCESS);
    EXPECT_THAT(Cores(trace_file_).back(),
                testing::EndsWith(" viWrite 4/4 VI_SUCCESS data=" + std::string(shown)));
    EXPECT_STATUS(visa.viClose(session), VI_SUCCESS);
  }
  const ViSession session = OpenSession(peer.Name());
  EXPECT_STATUS(Write(session, std::string(1025, 'x')), VI_SUCCESS);
  EXPECT_THAT(Lines(trace_file_).back(), testing::EndsWith("7878..."));
}

// The settings switch the trace on for the sessions that they are for.
class VisaTraceOfSession : public VisaTrace {
 protected:
  void SetUp() override {
    const EnvironmentVariable none("ZEVISA_TRACE", "");
    VisaTrace::SetUp();
  }
  std::string TraceHere() const { return "trace = " + trace_file_.string() + "\n"; }
};

TEST_F(VisaTraceOfSession, HoldsItsCallsFromTheOpenOnAndWhatMakesNoSense) {
  Peer other;
  const ViSession untraced = OpenSession(other.Name());
  const std::string text = "[TCPIP::*::" + peer.Port() + "::*]\n" + TraceHere() + "colour = red\n";
  const ViSession session = OpenWith(text);
  EXPECT_STATUS(Write(session, "x"), VI_SUCCESS);
  EXPECT_STATUS(Write(untraced, "y"), VI_SUCCESS);
  EXPECT_STATUS(visa.viClose(session), VI_SUCCESS);
  std::string file;  // back slashes are doubled
  for (const char c : file_.string()) file += c == '\\' ? "\\\\" : std::string(1, c);
  const std::string s = std::to_string(session);
  EXPECT_THAT(Cores(trace_file_),
              ElementsAre(HasSubstr("trace by"),
                          std::to_string(manager) + " viOpen - VI_SUCCESS resource=\"" +
                              peer.Name() + "\" mode=5 timeout=2000 opened=" + s + " config=\"" +
                              file + "\" section=\"TCPIP::*::" + peer.Port() + "::*\"",
                          s + " note - - text=\"" + file + ": line 3: no such key: colour\"",
                          s + " viWrite 1/1 VI_SUCCESS data=78", s + " viClose - VI_SUCCESS"));

  WriteFile(file_, "[*]\n" + TraceHere());
  ViSession refused = 0;
  const std::string nowhere = "TCPIP::127.0.0.1::1::SOCKET";
  EXPECT_STATUS(Open(nowhere, VI_LOAD_CONFIG, refused), VI_ERROR_RSRC_NFOUND);
  EXPECT_THAT(Lines(trace_file_).back(), HasSubstr("viOpen - "));
  EXPECT_THAT(Cores(trace_file_).back(), HasSubstr("VI_ERROR_RSRC_NFOUND resource=\"" + nowhere));
}

TEST_F(VisaTraceOfSession, IsGivenUpAloneWhereItCannotBeWritten) {
  std::filesystem::create_directory(trace_file_);
  for (const std::string& path : {trace_file_.string(), (file_ / "below" / "file").string()}) {
    const ViSession session = OpenWith("[*]\ntrace = " + path);
    EXPECT_STATUS(Write(session, "x"), VI_SUCCESS);
    EXPECT_STATUS(visa.viClose(session), VI_SUCCESS);
  }
}

TEST_F(VisaTrace, ThreadsWriteWholeLines) {
  constexpr int kCalls = 300;
  std::vector<std::jthread> threads;
  for (int first = 0; first < 4 * kCalls; first += kCalls) {
    threads.emplace_back([this, first] { Count(first, first + kCalls); });
  }
  threads.clear();
  EXPECT_EQ(CountDifferent(), 4U * kCalls);
}

TEST_F(VisaTrace, AFullFileBecomesTheOneBefore) {
  constexpr std::uintmax_t kSize = 64 * 1024;
  EXPECT_STATUS(visa.viClose(OpenWith("[*]\ntrace-size = 64")), VI_SUCCESS);
  Count(0, 3000);  // some three files
  const auto full = std::filesystem::file_size(Before());
  EXPECT_GE(full, kSize);
  EXPECT_LT(full, kSize + 200);
  EXPECT_LT(std::filesystem::file_size(trace_file_), kSize);
  const std::vector<int> numbers = Numbers();
  std::vector<int> last(numbers.size());
  std::iota(last.begin(), last.end(), 3000 - static_cast<int>(last.size()));
  EXPECT_EQ(numbers, last) << "nothing is lost between the two";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 3)
      << "the settings and two files";
}

TEST_F(VisaTrace, EndsWhereAFullFileCannotBeRenamed) {
  EXPECT_STATUS(visa.viClose(OpenWith("[*]\ntrace-size = 64")), VI_SUCCESS);
  std::filesystem::create_directories(Before() / "in the way");
  Count(0, 2000);
  const auto lines = Lines(trace_file_);
  EXPECT_THAT(lines.back(), HasSubstr("the trace ends"));
  EXPECT_LT(std::filesystem::file_size(trace_file_), 65 * 1024);
  std::filesystem::remove_all(Before());
  ViSession other = 0;
  EXPECT_STATUS(visa.viOpenDefaultRM(&other), VI_SUCCESS);
  EXPECT_EQ(Lines(Before()).size(), lines.size() + 2) << "tried again by a new client";
}

TEST_F(VisaTrace, AFileThatWasTakenAwayBeginsAnewWithTheNextClient) {
  std::filesystem::rename(trace_file_, folder_.path() / "taken");
  ViSession other = 0;
  EXPECT_STATUS(visa.viOpenDefaultRM(&other), VI_SUCCESS);
  EXPECT_EQ(Lines(trace_file_).size(), 2U);
  const EnvironmentVariable none("ZEVISA_TRACE", "");
  EXPECT_STATUS(visa.viOpenDefaultRM(&other), VI_SUCCESS);
  EXPECT_EQ(Lines(trace_file_).size(), 2U) << "switched off";
}

}  // namespace
