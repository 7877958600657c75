#include <atomic>
#include <functional>
#include <thread>

#include "tests/visa/VisaModule.h"

namespace {

class VisaThread : public VisaSession {
 protected:
  VisaThread() : VisaSession(VI_TMO_INFINITE) {}
  /// A read without limit on another thread, ended by the action once the read is surely waiting.
  ViStatus ReadEndedBy(const std::function<void()>& end) {
    ViStatus status = VI_SUCCESS;
    std::atomic<bool> ended = false;
    std::thread reader([&] {
      std::string text;
      status = Read(session, 10, text);
      ended = true;
    });
    // The attributes and the texts do not wait for the read meanwhile.
    EXPECT_EQ(Number(session, VI_ATTR_TMO_VALUE), VI_TMO_INFINITE);
    std::array<char, 256> text{};
    EXPECT_STATUS(visa.viStatusDesc(session, VI_ERROR_TMO, text.data()), VI_SUCCESS);
    while (!ended) {
      end();  // an end before the wait began has no effect
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    reader.join();
    return status;
  }
};

TEST_F(VisaThread, TerminateEndsAWaitingReadAndNothingElse) {
  EXPECT_STATUS(visa.viTerminate(session, 0, 0), VI_SUCCESS);  // nothing waits
  EXPECT_STATUS(visa.viTerminate(session, 1, 0), VI_ERROR_INV_DEGREE);
  EXPECT_STATUS(visa.viTerminate(session, 0, 7), VI_ERROR_INV_JOB_ID);
  EXPECT_STATUS(ReadEndedBy([&] { visa.viTerminate(session, 0, 0); }), VI_ERROR_ABORT);
  Send("ok");
  std::string text;
  EXPECT_STATUS(Read(session, 2, text), VI_SUCCESS_MAX_CNT);
  EXPECT_EQ(text, "ok");
}

TEST_F(VisaThread, CloseEndsAWaitingRead) {
  const ViStatus status = ReadEndedBy([&] { visa.viClose(session); });
  // A close before the read began leaves it no session at all.
  EXPECT_TRUE(status == VI_ERROR_ABORT || status == VI_ERROR_INV_OBJECT) << Hex(status);
  asio::error_code error;
  char byte = 0;
  asio::read(instrument, asio::buffer(&byte, 1), error);
  EXPECT_EQ(error, asio::error::eof);
}

TEST_F(VisaThread, SessionsDoNotWaitForEachOther) {
  Peer other_peer;
  const ViSession other = OpenSession(other_peer.Name(), 10000);
  auto other_instrument = other_peer.Accept();
  std::atomic<int> exchanges = 0;
  const ViStatus status = ReadEndedBy([&] {
    EXPECT_STATUS(Write(session, "out!"), VI_SUCCESS);  // the other direction is free too
    EXPECT_EQ(Got(4), "out!");
    std::string text(4, '\0');
    EXPECT_STATUS(Write(other, "ping"), VI_SUCCESS);
    asio::read(other_instrument, asio::buffer(text));
    asio::write(other_instrument, asio::buffer(text));
    EXPECT_STATUS(Read(other, 4, text), VI_SUCCESS_MAX_CNT);
    if (++exchanges == 20) Send("xxxxxxxxxx");
  });
  EXPECT_STATUS(status, VI_SUCCESS_MAX_CNT);
}

TEST_F(VisaTest, ManySessionsComeAndGo) {
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      Peer own;
      for (int round = 0; round < 20; ++round) {
        ViSession session = 0;
        EXPECT_STATUS(Open(own.Name(), VI_EXCLUSIVE_LOCK, session), VI_SUCCESS);
        auto instrument = own.Accept();
        EXPECT_STATUS(Write(session, "x"), VI_SUCCESS);
        EXPECT_STATUS(visa.viClose(session), VI_SUCCESS);
      }
    });
  }
}

}  // namespace
