#include <atomic>
#include <thread>

#include "tests/visa/VisaModule.h"

namespace {

enum class After { kStays, kCloses };

struct ReadRow {
  const char* label;
  std::string sent;
  ViUInt32 count;
  ViStatus status;
  std::string text;
  bool has_terminator = false;
  After after = After::kStays;
  ViUInt32 timeout = 30;
  bool ends_at_pause = false;
};

TEST_F(VisaTest, ReadsAndTellsWhy) {
  const ReadRow rows[] = {
      {"full", "abcdef", 6, VI_SUCCESS_MAX_CNT, "abcdef"},
      {"less than there is", "abcdef", 4, VI_SUCCESS_MAX_CNT, "abcd"},
      {"terminator is a byte like others when off", "a\nb", 3, VI_SUCCESS_MAX_CNT, "a\nb"},
      {"terminator", "ab\ncd\n", 10, VI_SUCCESS_TERM_CHAR, "ab\n", true},
      {"terminator as the last byte", "ab\n", 3, VI_SUCCESS_TERM_CHAR, "ab\n", true},
      {"full before the terminator", "abcd\n", 3, VI_SUCCESS_MAX_CNT, "abc", true},
      {"time-out with part", "abc", 10, VI_ERROR_TMO, "abc"},
      {"time-out with nothing", "", 10, VI_ERROR_TMO, ""},
      {"at once with nothing", "", 10, VI_ERROR_TMO, "", false, After::kStays, 0},
      {"no limit", "abc", 3, VI_SUCCESS_MAX_CNT, "abc", false, After::kStays, VI_TMO_INFINITE},
      {"nothing wanted", "abc", 0, VI_SUCCESS, ""},
      {"closed behind the data", "abc", 3, VI_SUCCESS_MAX_CNT, "abc", false, After::kCloses},
      {"closed within the data", "abc", 10, VI_ERROR_CONN_LOST, "abc", false, After::kCloses,
       VI_TMO_INFINITE},
      {"pause as an end", "abc", 10, VI_SUCCESS, "abc", false, After::kStays, 5000, true},
  };
  for (const ReadRow& row : rows) {
    SCOPED_TRACE(row.label);
    Peer peer;
    const ViSession session = OpenSession(peer.Name(), row.timeout);
    auto instrument = peer.Accept();
    visa.viSetAttribute(session, VI_ATTR_TERMCHAR_EN, row.has_terminator ? 1 : 0);
    visa.viSetAttribute(session, VI_ATTR_SUPPRESS_END_EN, row.ends_at_pause ? 0 : 1);
    asio::write(instrument, asio::buffer(row.sent));
    if (row.after == After::kCloses) instrument.close();
    std::string text;
    EXPECT_STATUS(Read(session, row.count, text), row.status);
    EXPECT_EQ(text, row.text);
    if (row.after == After::kCloses) {
      EXPECT_STATUS(Read(session, 1, text), VI_ERROR_CONN_LOST);
    }
  }
}

TEST_F(VisaSession, KeepsWhatCameBehindTheTerminator) {
  visa.viSetAttribute(session, VI_ATTR_TERMCHAR_EN, 1);
  Send("one\ntwo\nthree");
  std::string text;
  EXPECT_STATUS(Read(session, 100, text), VI_SUCCESS_TERM_CHAR);
  EXPECT_STATUS(Read(session, 2, text), VI_SUCCESS_MAX_CNT);
  EXPECT_EQ(text, "tw");
  EXPECT_STATUS(Read(session, 100, text), VI_SUCCESS_TERM_CHAR);
  EXPECT_EQ(text, "o\n");
  visa.viSetAttribute(session, VI_ATTR_TERMCHAR_EN, 0);
  EXPECT_STATUS(Read(session, 6, text), VI_ERROR_TMO);
  EXPECT_EQ(text, "three");
}

TEST_F(VisaSession, WritesEverythingOrCountsWhatWent) {
  EXPECT_STATUS(Write(session, "hello"), VI_SUCCESS);
  EXPECT_EQ(Got(5), "hello");
  instrument.set_option(asio::socket_base::linger(true, 0));
  instrument.close();
  ViStatus status = VI_SUCCESS;
  for (int i = 0; i < 1000 && status == VI_SUCCESS; ++i) status = Write(session, "more");
  EXPECT_STATUS(status, VI_ERROR_CONN_LOST);
}

TEST_F(VisaSession, WriteThatTimesOutCountsWhatTheSystemTook) {
  const std::string block(64 << 20, 'x');  // more than all buffers on the way
  ViUInt32 sent = 0;
  EXPECT_STATUS(visa.viWrite(session, reinterpret_cast<const ViByte*>(block.data()),
                             static_cast<ViUInt32>(block.size()), &sent),
                VI_ERROR_TMO);
  visa.viClose(session);
  asio::error_code end;
  std::string arrived;
  asio::read(instrument, asio::dynamic_buffer(arrived), end);
  EXPECT_GT(sent, 0U);
  EXPECT_EQ(arrived.size(), sent);
}

TEST_F(VisaSession, ClearDropsWhatArrivedAndSendsNothing) {
  visa.viSetAttribute(session, VI_ATTR_TERMCHAR_EN, 1);
  Send("one\n" + std::string(50000, 'x'));
  std::string text;
  EXPECT_STATUS(Read(session, 100, text), VI_SUCCESS_TERM_CHAR);
  EXPECT_STATUS(visa.viClear(session), VI_SUCCESS);
  EXPECT_STATUS(Read(session, 1, text), VI_ERROR_TMO);
  EXPECT_EQ(instrument.available(), 0U);
  Send("new");
  EXPECT_STATUS(Read(session, 3, text), VI_SUCCESS_MAX_CNT);
  EXPECT_EQ(text, "new");
}

TEST_F(VisaSession, ClearEndsWhileTheInstrumentStreams) {
  std::atomic<bool> stop = false;
  std::thread stream([&] {
    const std::string block(4096, 'x');
    asio::error_code error;
    while (!stop && !error) asio::write(instrument, asio::buffer(block), error);
  });
  EXPECT_STATUS(visa.viClear(session), VI_SUCCESS);
  stop = true;
  EXPECT_STATUS(visa.viClose(session), VI_SUCCESS);
  stream.join();
}

}  // namespace
