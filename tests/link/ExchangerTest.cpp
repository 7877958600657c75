// Framing, the failure table of the exchanger, the resumable data reads, events on their way up.
#include <numeric>

#include "tests/link/LinkFixture.h"

namespace {

using scripted::Function;
using testing::ElementsAre;

class ExchangerTest : public testing::Test {
 protected:
  ExchangerTest() { visa_.ClearRecord(); }

  Status Exchange() {
    message_.Begin(Command::kWriteParameter, 1, 0x10);
    message_.Append(Bytes{4, 0, 8});
    const std::array<ProtocolMessage*, 1> messages = {&message_};
    return exchanger_.SendMessages(messages);
  }
  Status Poll() {
    ProtocolMessage request(buffer_);
    request.Begin(Command::kReadData, 0, 'A');
    const Status result = exchanger_.StartRead(request);
    payload_.assign(request.payload().begin(), request.payload().end());
    return result;
  }
  [[nodiscard]] std::size_t Clears() const { return visa_.Calls(Function::kClear).size(); }
  [[nodiscard]] std::size_t RequestCount() const { return visa_.Requests().size(); }

  scripted::Visa visa_;
  CommandExchanger exchanger_{std::make_unique<uDevice::Interface>(kResource)};
  ProtocolMessage message_;
  std::array<std::uint8_t, 64> buffer_{};
  std::vector<std::uint8_t> payload_;
};

TEST_F(ExchangerTest, SeveralMessagesAreAllSentBeforeTheFirstAnswerIsRead) {
  ProtocolMessage other;
  message_.Begin(Command::kRecover);
  other.Begin(Command::kRecover);
  visa_.Answer(1);
  visa_.Answer(2);
  const std::array<ProtocolMessage*, 2> messages = {&message_, &other};
  EXPECT_EQ(exchanger_.SendMessages(messages), 0);
  EXPECT_EQ(message_.status(), 1);
  EXPECT_EQ(other.status(), 2);
}

struct FailureCase : Row {
  Bytes answer;  // on the wire
  ResultCode result;
};

class FailureTest : public ExchangerTest, public testing::WithParamInterface<FailureCase> {};

TEST_P(FailureTest, OfABlockingExchangeAndOfAPoll) {
  for (const bool polls : {false, true}) {
    visa_.AnswerRaw(GetParam().answer);
    EXPECT_EQ(polls ? Poll() : Exchange(), GetParam().result);
    // A silence between the two is what lets the next answer begin at its beginning.
    exchanger_.device().Clear();
    EXPECT_EQ(Exchange(), 0);
    EXPECT_EQ(message_.status(), 0);
  }
}

const std::vector<FailureCase> kFailureCases = {
    {"WrongMagic", "AA 54 03 00 00 00 00 00 00 00 00 00 01 00 00 00"_hex, kViolation},
    {"MagicTurnedRound", "55 AA 03 00 00 00 00 00 00 00 00 00 01 00 00 00"_hex, kViolation},
    {"HalfAHeader", "AA 55 03 00 00 00 00"_hex, scripted::kTimeout},
    {"Silence", {}, scripted::kTimeout},
    {"7001BytesAreLongerThanAnyBuffer",
     "AA 55 03 00 00 00 59 1B 00 00 00 00 01 00 00 00 | 01 02 03"_hex, kViolation},
};
INSTANTIATE_TEST_SUITE_P(Headers, FailureTest, testing::ValuesIn(kFailureCases), RowName());

TEST_F(ExchangerTest, AnswerThatFillsTheBufferIsTaken) {
  visa_.Answer(0, Bytes(7000, 0x5A));
  EXPECT_EQ(Exchange(), 0);
  EXPECT_EQ(message_.payload().size(), 7000U);
  EXPECT_EQ(message_.payload().back(), 0x5A);
}

TEST_F(ExchangerTest, BlockLongerThanTheCallersBufferIsDropped) {
  visa_.CompleteData(Bytes(65, 1));
  EXPECT_EQ(Poll(), kViolation);
  visa_.CompleteData(Bytes(64, 2));
  EXPECT_EQ(Poll(), 0);
  EXPECT_EQ(Clears(), 1U);
  EXPECT_EQ(payload_.size(), 64U);
}

TEST_F(ExchangerTest, BodyIsAssembledFromPiecesAndTheTimeoutRestored) {
  const auto timeouts = [this] {
    std::vector<std::uint64_t> values;
    for (const auto* call : visa_.Calls(Function::kSetAttribute)) values.push_back(call->value);
    visa_.ClearRecord();
    return values;
  };
  EXPECT_EQ(Exchange(), 0);
  EXPECT_THAT(timeouts(), ElementsAre(1000, 2000));
  const Bytes body(24, 7);
  visa_.Answer(0, body);
  visa_.SpoilAnswer({.piece = 17});
  EXPECT_EQ(Exchange(), 0);
  EXPECT_EQ(ToHex(message_.payload()), ToHex(body));
  // Set for each part, restored to what the first failure had left.
  EXPECT_THAT(timeouts(), ElementsAre(1000, 1000, 1000, 1000));
}

TEST_F(ExchangerTest, FailuresOfVisaAreReturnedUnchanged) {
  for (const Function function :
       {Function::kRead, Function::kGetAttribute, Function::kSetAttribute}) {
    visa_.SetResult(function, 0xBFFF00A6, 1);
    EXPECT_EQ(Exchange(), scripted::kConnectionLost);
    exchanger_.device().Clear();
  }
  // A failed write shows up as the missing answer.
  visa_.SetResult(Function::kWrite, 0xBFFF00A6, 2);
  EXPECT_EQ(Exchange(), scripted::kTimeout);
}

TEST_F(ExchangerTest, LibraryThatReadsNothingSuccessfullyIsAnError) {
  visa_.SetResult(Function::kRead, 0, 1);
  EXPECT_EQ(Exchange(), kViolation);
}

// --- Data reads

TEST_F(ExchangerTest, PollContinuesWhereItStoppedWithoutANewRequest) {
  EXPECT_EQ(Poll(), scripted::kTimeout);
  EXPECT_EQ(Poll(), scripted::kTimeout);
  EXPECT_EQ(RequestCount(), 1U);
  visa_.CompleteData("01 02 03 04"_hex);
  EXPECT_EQ(Poll(), 0);
  EXPECT_EQ(ToHex(payload_), "01 02 03 04");
  EXPECT_EQ(Poll(), scripted::kTimeout);
  EXPECT_EQ(RequestCount(), 2U);
}

TEST_F(ExchangerTest, PollTakesABodyInPieces) {
  visa_.Answer(0, "01 02 03 04"_hex);
  visa_.SpoilAnswer({.piece = 17});
  EXPECT_EQ(Poll(), scripted::kTimeout);
  EXPECT_EQ(Poll(), 0);
  EXPECT_EQ(ToHex(payload_), "01 02 03 04");
  EXPECT_EQ(RequestCount(), 1U);
}

TEST_F(ExchangerTest, CommandDropsAPendingReadByClearing) {
  EXPECT_EQ(Poll(), scripted::kTimeout);
  EXPECT_EQ(Exchange(), 0);
  EXPECT_EQ(Clears(), 1U);
  EXPECT_EQ(Exchange(), 0);
  EXPECT_EQ(Clears(), 1U);
  visa_.CompleteData("01 02"_hex);
  EXPECT_EQ(Poll(), 0);
  EXPECT_THAT(visa_.RequestOrder(), ElementsAre("6", "3:4/10x1", "3:4/10x1", "6"));
}

TEST_F(ExchangerTest, CommandDropsAReadWhoseHeaderIsIn) {
  visa_.AnswerRaw("AA 55 06 00 00 00 04 00 00 41 00 00 01 00 00 00 01"_hex);
  EXPECT_EQ(Poll(), scripted::kTimeout);
  EXPECT_EQ(Exchange(), 0);
  visa_.CompleteData("07 08"_hex);
  EXPECT_EQ(Poll(), 0);
  EXPECT_EQ(ToHex(payload_), "07 08");
}

TEST_F(ExchangerTest, FailedClearIsTheResultAndNothingIsSent) {
  EXPECT_EQ(Poll(), scripted::kTimeout);
  visa_.SetResult(Function::kClear, 0xBFFF003E, 1);
  EXPECT_EQ(Exchange(), Status::kVisaIo);
  EXPECT_EQ(RequestCount(), 1U);
  EXPECT_EQ(Exchange(), 0);
  EXPECT_EQ(Clears(), 2U);
}

TEST_F(ExchangerTest, FailedExchangeIsClearedBeforeTheNextRequestUntilAClearWorks) {
  for (const bool polls : {false, true}) {
    visa_.ClearRecord();
    visa_.AnswerRaw({});
    EXPECT_EQ(Exchange(), scripted::kTimeout);
    visa_.SetResult(Function::kClear, 0xBFFF003E, 2);
    // Whether the link is gone shows in the exchange.
    visa_.CompleteData(Bytes(2));
    EXPECT_EQ(polls ? Poll() : Exchange(), 0);
    EXPECT_EQ(Clears(), 1U);
    EXPECT_EQ(Exchange(), 0);
    EXPECT_EQ(Exchange(), 0);
    EXPECT_EQ(Exchange(), 0);
    EXPECT_EQ(Clears(), 3U);
    if (!polls) {
      EXPECT_EQ(Poll(), 0);
    }
  }
}

TEST_F(ExchangerTest, LostLinkOrExceptionOfTheLibraryEndsThePendingRead) {
  const std::pair<std::int32_t, ResultCode> rows[] = {
      {scripted::kConnectionLost, scripted::kConnectionLost}, {scripted::kThrow, Status::kVisaIo}};
  for (const auto& [forced, result] : rows) {
    visa_.ClearRecord();
    EXPECT_EQ(Poll(), scripted::kTimeout);
    visa_.SetResult(Function::kRead, static_cast<std::uint32_t>(forced), 1);
    EXPECT_EQ(Poll(), result);
    EXPECT_EQ(Poll(), scripted::kTimeout);
    EXPECT_EQ(RequestCount(), 2U);
    EXPECT_EQ(Exchange(), 0);
  }
}

TEST_F(BlockTest, FormatIsAskedForAndHandedBack) {
  visa_.CompleteData("01 00 00 00 02 00 00 00 03 00 00 00 | 00 00"_hex, '@');
  EXPECT_EQ(ReadBlock(), 0);
  EXPECT_EQ(received_, Received(14, '@'));
  EXPECT_EQ(buffer_[4], 2);
  visa_.CompleteData("00 00"_hex);
  EXPECT_EQ(PollBlock(ReadingFormat::kInteger), 0);
  EXPECT_EQ(received_, Received(2, 'A'));
  EXPECT_THAT(visa_.Requests(),
              ElementsAre(Request{.command = 6, .type = 'A'}, Request{.command = 6, .type = '@'}));
  visa_.CompleteData("00 00"_hex, 'B');
  EXPECT_EQ(ReadBlock(), kViolation);
  EXPECT_EQ(model_.Recover(), 0);
  EXPECT_EQ(visa_.Calls(Function::kClear).size(), 1U) << "the awaited answer may come still";
}

TEST_F(BlockTest, StatusInTheHeaderIsNoBlock) {
  for (const std::uint16_t code : {std::uint16_t{6}, std::uint16_t{0x8007}}) {
    visa_.CompleteData("01 02 03 04"_hex, '@', code);
    EXPECT_EQ(ReadBlock(), static_cast<std::int16_t>(code));
    EXPECT_EQ(received_, Received(0, 0));
  }
  EXPECT_TRUE(keeper_.events.empty());
  EXPECT_EQ(visa_.Requests().size(), 2U);
}

TEST_F(BlockTest, NegativeStatusWordRaisesOneEventAndIsReturned) {
  visa_.CompleteData("01 00 00 00 02 00 00 00 03 00 00 00 | 1C 80"_hex);
  EXPECT_EQ(PollBlock(), -32740);
  EXPECT_EQ(received_, Received(14, 'A'));
  visa_.CompleteData("07 80"_hex);
  EXPECT_EQ(ReadBlock(), -32761);
  ASSERT_EQ(keeper_.events.size(), 2U);
  const uIEvent::Event& event = *keeper_.events[0];
  EXPECT_EQ(event.name(), "Data processing error");
  EXPECT_EQ(event.type(), 2U);
  EXPECT_EQ(event.kind(), 2U);
  EXPECT_EQ(event.data(), nullptr);
  EXPECT_EQ(event.source(), &model_);
}

TEST_F(BlockTest, LengthsFromNothingToTheLargest) {
  for (const std::size_t size : std::vector<std::size_t>{0, 1, 2, 65535}) {
    const Bytes block(size, 1);
    visa_.CompleteData(block);
    EXPECT_EQ(ReadBlock(), 0);
    EXPECT_EQ(received_, Received(size, 'A'));
    visa_.CompleteData(block);
    EXPECT_EQ(PollBlock(), 0);
    EXPECT_EQ(received_, Received(size, 'A'));
  }
}

// --- Events

TEST_F(LinkTest, EventOfTheExchangerReachesTheTopUnchanged) {
  int payload = 0;
  uIEvent::Event* const event = uIEvent::MakeErrorEvent(this, "name", &payload);
  exchanger_.ProcessEvent(event);
  ASSERT_EQ(keeper_.events.size(), 1U);
  EXPECT_EQ(keeper_.events[0].get(), event);
  EXPECT_EQ(event->data(), &payload);
  event->set_data(nullptr);
  EXPECT_EQ(event->data(), nullptr);
  EXPECT_EQ(exchanger_.GetProcessor(), &exchanger_);
}

TEST_F(ExchangerTest, EventWithoutManagerThrows) {
  const auto event =
      std::unique_ptr<uIEvent::Event>(uIEvent::MakeErrorEvent(this, "name", nullptr));
  EXPECT_THAT([&] { exchanger_.ProcessEvent(event.get()); },
              testing::ThrowsMessage<std::exception>(
                  "Debug: Manager doesn't set. uIEvent::EventProcessor::ProcessEvent"));
}

TEST(EventTest, FactoriesSetTypeAndKind) {
  struct Case {
    uIEvent::Event* event;
    std::uint32_t type, kind;
  };
  for (const Case& row : {Case{uIEvent::MakeEvent(nullptr, "n", nullptr, 7, 8), 7, 8},
                          Case{uIEvent::MakeErrorEvent(nullptr, "n", nullptr), 2, 2},
                          Case{uIEvent::MakeWarningEvent(nullptr, "n", nullptr), 1, 2},
                          Case{uIEvent::MakeStateEvent(nullptr, "n", nullptr, true), 3, 0},
                          Case{uIEvent::MakeStateEvent(nullptr, "n", nullptr, false), 0, 0},
                          Case{uIEvent::MakeNoticeEvent(nullptr, "n", nullptr), 0, 1}}) {
    const std::unique_ptr<uIEvent::Event> event(row.event);
    EXPECT_EQ(event->type(), row.type);
    EXPECT_EQ(event->kind(), row.kind);
    EXPECT_EQ(event->name(), "n");
  }
}

}  // namespace
