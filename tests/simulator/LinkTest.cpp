// The simulator as a client meets it: bytes over a socket.
#include <gtest/gtest.h>

#include <system_error>
#include <thread>

#include "simulator/FaultText.h"
#include "simulator/Simulator.h"
#include "tests/simulator/WireClient.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// 1 GHz, 10 points by 10 MHz, stop 1.09 GHz.
const Bytes kSweepElements =
    FromHex("00 00 00 CA 9A 3B 00 00 0A 00 00 00 00 00 80 96 98 00 00 00 80 12 F8 40 00 00");
constexpr std::size_t kSweepBlock = 10 * 12 + 2;

Bytes Dwell(std::uint32_t microseconds) {
  Bytes body = FromHex("05 00 00 00 00 00");
  AppendInteger(body, std::uint64_t{1000} * microseconds, 4);
  return Request(3, 2, 0x40, body);
}

const Bytes kDataRequest = Request(6, 0, 'A', {}, 100);
const Bytes kRecovery = Request(1, 0, 0, {}, 7);

class LinkTest : public ::testing::Test {
 protected:
  /// A sweep of 10 points, that long each.
  void SetSweep(std::uint32_t microseconds) {
    EXPECT_EQ(client_.Exchange(Request(3, 4, 0x60, kSweepElements)).status, 0);
    EXPECT_EQ(client_.Exchange(Dwell(microseconds)).status, 0);
  }
  std::uint16_t StartedPort() {
    simulator_.Start();
    return simulator_.Port();
  }
  Simulator simulator_;
  WireClient client_{StartedPort()};
};

TEST_F(LinkTest, AnswersToTheByte) {
  client_.Send(FromHex("AA 55 03 00 00 80 04 00 01 10 00 00 2A 00 00 00 04 00 08 77"));
  EXPECT_EQ(ToHex(client_.Receive(19)), "AA 55 03 00 00 00 03 00 01 10 00 00 2A 00 00 00 04 00 08");
  client_.Send(FromHex("AA 55 03 00 00 80 04 00 01 10 00 00 2B 00 00 00 C8 00 08 77"));
  EXPECT_EQ(ToHex(client_.Receive(16)), "AA 55 03 00 02 80 00 00 01 10 00 00 2B 00 00 00");
  EXPECT_EQ(simulator_.State().averaging, 8);
  EXPECT_EQ(simulator_.ResourceName(),
            "TCPIP0::127.0.0.1::" + std::to_string(simulator_.Port()) + "::SOCKET");
}

TEST_F(LinkTest, ACommandDuringTheSweepDropsItsBlock) {
  SetSweep(20000);
  client_.Send(kDataRequest);
  EXPECT_TRUE(client_.StaysQuiet(milliseconds(20)));
  EXPECT_EQ(client_.Exchange(kRecovery).sequence, 7U);
  EXPECT_TRUE(client_.StaysQuiet(milliseconds(300))) << "the stale block came";
  EXPECT_EQ(client_.Exchange(kDataRequest).body.size(), kSweepBlock);
}

TEST_F(LinkTest, AnotherClientsSettingRestartsTheSweep) {
  WireClient other(simulator_.Port());
  SetSweep(500000);  // long beside the quiet below
  client_.Send(kDataRequest);
  EXPECT_TRUE(client_.StaysQuiet(milliseconds(150)));
  const auto start = steady_clock::now();
  EXPECT_EQ(other.Exchange(Dwell(10000)).status, 0);
  const Message reply = client_.ReceiveReply();
  EXPECT_GE(steady_clock::now() - start, milliseconds(99));
  EXPECT_EQ(reply.sequence, 100U);
  EXPECT_EQ(reply.body.size(), kSweepBlock);
}

TEST_F(LinkTest, ASweepWhoseReaderIsGoneIsGivenUp) {
  SetSweep(50000);
  {
    WireClient gone(simulator_.Port());
    gone.Send(kDataRequest);
    EXPECT_TRUE(gone.StaysQuiet(milliseconds(100)));
  }
  while (simulator_.ConnectionCount() > 1) std::this_thread::sleep_for(milliseconds(1));
  const auto start = steady_clock::now();
  EXPECT_EQ(client_.Exchange(kDataRequest).body.size(), kSweepBlock);
  EXPECT_GE(steady_clock::now() - start, milliseconds(499)) << "a sweep of its own";
}

TEST_F(LinkTest, AnExternalTriggerStartsTheSweep) {
  EXPECT_EQ(client_.Exchange(Request(3, 4, 0x60, kSweepElements)).status, 0);
  EXPECT_EQ(client_.Exchange(Request(3, 5, 0x10, {7, 0, 1, 0, 0, 0, 2})).status, 0);
  client_.Send(kDataRequest);
  EXPECT_TRUE(client_.StaysQuiet(milliseconds(50)));
  simulator_.FireTrigger();
  EXPECT_EQ(client_.ReceiveReply().body.size(), kSweepBlock);
}

TEST_F(LinkTest, Faults) {
  const Bytes write = Request(3, 1, 0x10, {4, 0, 8});
  simulator_.InjectFault(Fault::Refuse(4, -5, 1));
  EXPECT_EQ(client_.Exchange(write).status, -5);
  EXPECT_EQ(simulator_.State().averaging, 1) << "what was refused was set";
  EXPECT_EQ(client_.Exchange(write).status, 0);

  simulator_.InjectFault(ParseFault("pieces:bytes=5,pause=20,times=1"));
  const auto start = steady_clock::now();
  EXPECT_EQ(client_.Exchange(kDataRequest).body.size(), 14U);
  EXPECT_GE(steady_clock::now() - start, milliseconds(59)) << "three pieces, a pause before each";

  simulator_.InjectFault(ParseFault("silence:times=1"));
  client_.Send(write);
  EXPECT_TRUE(client_.StaysQuiet(milliseconds(50)));

  simulator_.InjectFault(Fault::DropAfter(1));
  EXPECT_EQ(client_.Exchange(write).status, 0);
  client_.Send(write);
  EXPECT_TRUE(client_.IsClosedByPeer());
}

TEST_F(LinkTest, KeepsItsPortAndItsSettingsOverAPowerCut) {
  const std::uint16_t port = simulator_.Port();
  EXPECT_EQ(client_.Exchange(Request(3, 1, 0x10, {4, 0, 8})).status, 0);
  SetSweep(20000);
  client_.Send(kDataRequest);
  EXPECT_TRUE(client_.StaysQuiet(milliseconds(20)));
  simulator_.Stop();
  EXPECT_TRUE(client_.IsClosedByPeer());
  EXPECT_THROW(WireClient{port}, std::system_error);
  simulator_.Start();
  EXPECT_EQ(simulator_.Port(), port);
  WireClient client(port);
  EXPECT_EQ(ToHex(client.Exchange(Request(4, 1, 0x10, {4, 0, 0})).body), "04 00 08");
}

TEST_F(LinkTest, ATakenPortIsAnError) {
  Simulator second({.port = simulator_.Port()});
  EXPECT_THROW(second.Start(), std::system_error);
}

TEST(SmallInstrument, IsNamedByAnAddressThatReachesIt) {
  for (const auto& [address, host] : {std::pair("0.0.0.0", "127.0.0.1"),
                                      {"127.0.0.2", "127.0.0.2"},
                                      {"::", "[::1]"},
                                      {"fe80::1", "[fe80::1]"}}) {
    EXPECT_EQ(Simulator({.address = address}).ResourceName(),
              "TCPIP0::" + std::string(host) + "::0::SOCKET");
  }
}

TEST(SmallInstrument, ClosesTooManyConnections) {
  Simulator simulator({.max_connections = 1});
  simulator.Start();
  WireClient first(simulator.Port());
  EXPECT_EQ(first.Exchange(kRecovery).status, 0);
  EXPECT_TRUE(WireClient(simulator.Port()).IsClosedByPeer());
  EXPECT_EQ(simulator.ConnectionCount(), 1U);
  EXPECT_EQ(first.Exchange(kRecovery).status, 0);
}

TEST_F(LinkTest, AClientThatNeverReadsDoesNotFillTheMemory) {
  WireClient deaf(simulator_.Port());
  Bytes requests;
  for (int i = 0; i < 64; ++i) {
    const Bytes identity = Request(4, 100, 0x10, {15, 0});
    requests.insert(requests.end(), identity.begin(), identity.end());
  }
  std::jthread sender([&] {
    try {
      for (int i = 0; i < 100000; ++i) deaf.Send(requests);
      ADD_FAILURE() << "all was taken";
    } catch (const std::system_error&) {
      // The instrument went away while the rest of the requests waited.
    }
  });
  // Others are served meanwhile, and it can be switched off.
  std::this_thread::sleep_for(milliseconds(300));
  EXPECT_EQ(client_.Exchange(kRecovery).status, 0);
  simulator_.Stop();
}

TEST(SmallInstrument, RemembersAndShowsItsRequests) {
  Simulator simulator({.log_capacity = 3});
  std::vector<std::string> shown;
  simulator.Observe([&](const RequestRecord& record, const InstrumentState& state) {
    shown.push_back(record.text + " | " + std::to_string(state.averaging));
  });
  simulator.Start();
  WireClient client(simulator.Port());
  client.Exchange(kRecovery);
  client.Exchange(Request(3, 1, 0x10, {4, 0, 99}));
  client.Exchange(Request(4, 1, 0x20, {200, 0, 0, 0}));
  client.Exchange(kDataRequest);
  const std::vector<RequestRecord> records = simulator.Requests();
  simulator.Stop();
  ASSERT_EQ(records.size(), 3U);
  EXPECT_EQ(records[0].parameter, 4);
  EXPECT_EQ(records[0].status, 0);
  EXPECT_EQ(ToHex(records[0].body), "04 00 63");
  EXPECT_EQ(records[2].sequence, 100U);
  EXPECT_EQ(shown, (std::vector<std::string>{
                       "recover -> 0 | 1",
                       "write averaging #4 [99] -> 0 [14] | 14",
                       "read parameter #200 -> 0x8002 | 14",
                       "data -> when the sweep ends | 14",
                   }));
}

}  // namespace
}  // namespace simulator
