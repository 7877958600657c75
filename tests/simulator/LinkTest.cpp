// The simulator as a client meets it: bytes over a socket.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <system_error>
#include <thread>

#include "simulator/Simulator.h"
#include "tests/simulator/WireClient.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// 1 GHz, 10 points by 10 MHz, stop 1.09 GHz.
const ByteText kSweep =
    FromHex("00 00 00 CA 9A 3B 00 00 0A 00 00 00 00 00 80 96 98 00 00 00 80 12 F8 40 00 00");
constexpr std::size_t kSweepBlock = 10 * 12 + 2;

ByteText Dwell(std::uint32_t microseconds) {
  ByteText body = FromHex("05 00 00 00 00 00");
  const std::uint32_t nanoseconds = microseconds * 1000;
  for (int shift = 0; shift < 32; shift += 8) {
    body.push_back(static_cast<std::uint8_t>(nanoseconds >> shift));
  }
  return Request(3, 2, 0x40, body);
}

ByteText Trigger(std::uint8_t code) { return Request(3, 5, 0x10, {7, 0, code, 0, 0, 0, 2}); }

const ByteText kDataRequest = Request(6, 0, 'A', {}, 100);
const ByteText kRecovery = Request(1, 0, 0, {}, 7);

class LinkTest : public ::testing::Test {
 protected:
  void Begin(const Options& options = {}) {
    simulator_ = std::make_unique<Simulator>(options);
    simulator_->Start();
  }
  // A sweep that takes 10 points of 20 ms, set through the client.
  void SetSlowSweep(WireClient& client) {
    EXPECT_EQ(client.Exchange(Request(3, 4, 0x60, kSweep)).status, 0);
    EXPECT_EQ(client.Exchange(Dwell(20000)).status, 0);
  }
  std::unique_ptr<Simulator> simulator_;
};

TEST_F(LinkTest, AnswersToTheByte) {
  Begin();
  WireClient client(simulator_->Port());
  client.Send(FromHex("AA 55 03 00 00 80 04 00 01 10 00 00 2A 00 00 00 04 00 08 77"));
  EXPECT_EQ(Hex(client.Receive(19)), "AA 55 03 00 00 00 03 00 01 10 00 00 2A 00 00 00 04 00 08");
  client.Send(FromHex("AA 55 03 00 00 80 04 00 01 10 00 00 2B 00 00 00 C8 00 08 77"));
  EXPECT_EQ(Hex(client.Receive(16)), "AA 55 03 00 02 80 00 00 01 10 00 00 2B 00 00 00");
  EXPECT_EQ(simulator_->State().averaging, 8);
  EXPECT_EQ(simulator_->ResourceName(),
            "TCPIP0::127.0.0.1::" + std::to_string(simulator_->Port()) + "::SOCKET");
}

TEST_F(LinkTest, ASweepTakesItsTimeAndASinglePointNone) {
  Begin();
  WireClient client(simulator_->Port());
  EXPECT_EQ(client.Exchange(kDataRequest).body.size(), 14U);
  SetSlowSweep(client);
  const auto start = steady_clock::now();
  const Reply reply = client.Exchange(kDataRequest);
  EXPECT_GE(steady_clock::now() - start, milliseconds(199));
  EXPECT_EQ(reply.word, 0x55AA);
  EXPECT_EQ(reply.sequence, 100U);
  EXPECT_EQ(reply.body.size(), kSweepBlock);
}

TEST_F(LinkTest, ACommandDuringTheSweepDropsItsBlock) {
  Begin();
  WireClient client(simulator_->Port());
  SetSlowSweep(client);
  client.Send(kDataRequest);
  EXPECT_TRUE(client.StaysQuiet(milliseconds(20)));
  EXPECT_EQ(client.Exchange(kRecovery).sequence, 7U);
  EXPECT_TRUE(client.StaysQuiet(milliseconds(300))) << "the stale block came";
  EXPECT_EQ(client.Exchange(kDataRequest).body.size(), kSweepBlock);
}

TEST_F(LinkTest, AnotherClientsSettingRestartsTheSweep) {
  Begin();
  WireClient client(simulator_->Port());
  WireClient other(simulator_->Port());
  SetSlowSweep(client);
  EXPECT_EQ(client.Exchange(Dwell(500000)).status, 0);  // long beside the quiet below
  client.Send(kDataRequest);
  EXPECT_TRUE(client.StaysQuiet(milliseconds(150)));
  const auto start = steady_clock::now();
  EXPECT_EQ(other.Exchange(Dwell(10000)).status, 0);
  EXPECT_EQ(client.ReceiveReply().body.size(), kSweepBlock);
  EXPECT_GE(steady_clock::now() - start, milliseconds(99));
}

TEST_F(LinkTest, ExternalTriggers) {
  Begin();
  WireClient client(simulator_->Port());
  EXPECT_EQ(client.Exchange(Request(3, 4, 0x60, kSweep)).status, 0);
  EXPECT_EQ(client.Exchange(Trigger(1)).status, 0);
  client.Send(kDataRequest);
  EXPECT_TRUE(client.StaysQuiet(milliseconds(50)));
  simulator_->FireTrigger();
  EXPECT_EQ(client.ReceiveReply().body.size(), kSweepBlock);

  EXPECT_EQ(client.Exchange(Trigger(3)).status, 0);
  for (int point = 0; point < 9; ++point) {
    simulator_->FireTrigger();
  }
  client.Send(kDataRequest);
  EXPECT_TRUE(client.StaysQuiet(milliseconds(50)));
  simulator_->FireTrigger();
  EXPECT_EQ(client.ReceiveReply().body.size(), kSweepBlock);
}

TEST_F(LinkTest, TheLongestSweepFitsOneAnswer) {
  Begin();
  WireClient client(simulator_->Port());
  // 1 GHz by 1 kHz, 10001 points.
  const Reply set = client.Exchange(Request(
      3, 4, 0x60,
      FromHex("00 00 00 CA 9A 3B 00 00 11 27 00 00 00 00 E8 03 00 00 00 00 00 00 00 00 00 00")));
  EXPECT_EQ(IntegerAt(set.body, 8), 5461);
  EXPECT_EQ(client.Exchange(kDataRequest).body.size(), 65534U);
}

TEST_F(LinkTest, Faults) {
  Begin();
  const ByteText write = Request(3, 1, 0x10, {4, 0, 8});
  Fault fault;

  WireClient client(simulator_->Port());
  simulator_->InjectFault(Fault::Refuse(4, -5, 1));
  EXPECT_EQ(client.Exchange(write).status, -5);
  EXPECT_EQ(simulator_->State().averaging, 1) << "what was refused was set";
  EXPECT_EQ(client.Exchange(write).status, 0);

  fault.kind = FaultKind::kPieces;
  fault.bytes = 5;
  fault.pause = milliseconds(20);
  fault.times = 1;
  simulator_->InjectFault(fault);
  const auto start = steady_clock::now();
  EXPECT_EQ(client.Exchange(kDataRequest).body.size(), 14U);
  EXPECT_GE(steady_clock::now() - start, milliseconds(59)) << "three pieces, a pause before each";

  fault.kind = FaultKind::kSilence;
  simulator_->InjectFault(fault);
  client.Send(write);
  EXPECT_TRUE(client.StaysQuiet(milliseconds(50)));

  fault.kind = FaultKind::kAnnouncedLength;
  fault.bytes = 20000;
  simulator_->InjectFault(fault);
  client.Send(write);
  EXPECT_EQ(Hex(client.Receive(19)), "AA 55 03 00 00 00 23 4E 01 10 00 00 01 00 00 00 04 00 08");

  simulator_->InjectFault(Fault::DropAfter(1));
  EXPECT_EQ(client.Exchange(write).status, 0);
  client.Send(write);
  EXPECT_TRUE(client.IsClosedByPeer());
}

TEST_F(LinkTest, KeepsItsPortAndItsSettingsOverAPowerCut) {
  Begin();
  const std::uint16_t port = simulator_->Port();
  {
    WireClient client(port);
    EXPECT_EQ(client.Exchange(Request(3, 1, 0x10, {4, 0, 8})).status, 0);
    SetSlowSweep(client);
    client.Send(kDataRequest);
    EXPECT_TRUE(client.StaysQuiet(milliseconds(20)));
    simulator_->Stop();
    EXPECT_TRUE(client.IsClosedByPeer());
    EXPECT_THROW(WireClient{port}, std::system_error);
  }
  simulator_->Start();
  EXPECT_EQ(simulator_->Port(), port);
  WireClient client(port);
  EXPECT_EQ(Hex(client.Exchange(Request(4, 1, 0x10, {4, 0, 0})).body), "04 00 08");
}

TEST_F(LinkTest, ATakenPortIsAnError) {
  Begin();
  Options options;
  options.port = simulator_->Port();
  Simulator second(options);
  EXPECT_THROW(second.Start(), std::system_error);
}

TEST_F(LinkTest, TooManyConnectionsAreClosed) {
  Options options;
  options.max_connections = 1;
  Begin(options);
  WireClient first(simulator_->Port());
  EXPECT_EQ(first.Exchange(kRecovery).status, 0);
  WireClient second(simulator_->Port());
  EXPECT_TRUE(second.IsClosedByPeer());
  EXPECT_EQ(simulator_->ConnectionCount(), 1U);
  EXPECT_EQ(first.Exchange(kRecovery).status, 0);
}

TEST_F(LinkTest, SurvivesArbitraryBytes) {
  Begin();
  std::mt19937 random(2026);
  const auto byte = [&] { return static_cast<std::uint8_t>(random()); };
  for (int round = 0; round < 30; ++round) {
    WireClient client(simulator_->Port());
    ByteText bytes;
    for (int i = 0; i < 200; ++i) {
      // Rubbish half of the time, otherwise a request of a known parameter with a random shape.
      if (byte() % 2 == 0) {
        bytes.push_back(byte());
        continue;
      }
      static constexpr std::uint8_t kIds[] = {0, 2, 3, 7, 10, 12, 15, 26, 31, 76, 79, 83};
      ByteText body(byte() % 64U);
      for (std::uint8_t& element : body) {
        element = byte() % 3 == 0 ? byte() : 0;
      }
      if (body.size() >= 2) {
        body[0] = kIds[byte() % std::size(kIds)];
        body[1] = 0;
      }
      static constexpr std::uint8_t kTypes[] = {0x10, 0x20, 0x21, 0x40, 0x42, 0x60, 0x62, 0xFF};
      const ByteText request = Request(static_cast<std::uint16_t>(byte() % 8), byte() % 11,
                                       kTypes[byte() % std::size(kTypes)], body);
      bytes.insert(bytes.end(), request.begin(), request.end());
    }
    client.Send(bytes);
    if (round % 2 == 0) {
      client.Receive(1000, milliseconds(5));
    }
  }
  WireClient client(simulator_->Port());
  EXPECT_EQ(client.Exchange(kRecovery).status, 0);
}

TEST_F(LinkTest, AClientThatNeverReadsDoesNotFillTheMemory) {
  Begin();
  WireClient deaf(simulator_->Port());
  ByteText requests;
  for (int i = 0; i < 64; ++i) {
    const ByteText identity = Request(4, 100, 0x10, {15, 0});
    requests.insert(requests.end(), identity.begin(), identity.end());
  }
  std::jthread sender([&] {
    try {
      for (int i = 0; i < 100000; ++i) {
        deaf.Send(requests);
      }
      ADD_FAILURE() << "all was taken";
    } catch (const std::system_error&) {
      // The instrument went away while the rest of the requests waited.
    }
  });
  // Others are served meanwhile, and it can be switched off.
  std::this_thread::sleep_for(milliseconds(300));
  WireClient client(simulator_->Port());
  EXPECT_EQ(client.Exchange(kRecovery).status, 0);
  simulator_->Stop();
}

TEST_F(LinkTest, RequestsAreRememberedAndShown) {
  Options options;
  options.log_capacity = 3;
  Simulator simulator(options);
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
  EXPECT_EQ(Hex(records[0].body), "04 00 63");
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
