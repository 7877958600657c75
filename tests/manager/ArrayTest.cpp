// Arrays of clients: what of them goes on the wire, and what comes back into them.
#include <utility>

#include "tests/manager/ManagerFixture.h"
#include "tests/platform/Arrays.h"

namespace {

using testing::ElementsAre;
using Values = std::vector<double>;

// --- Lists

struct ListCase : Row {
  LONG lower;  // bound of the array
  Values given;
  Values answer;  // to the list; empty: as sent
  Values sent;    // nothing: a list that is not there
  Values back;
};

class ListTest : public ManagerTest, public testing::WithParamInterface<ListCase> {};

TEST_P(ListTest, IsSentFromItsFirstElementAndComesBackCorrected) {
  Open();
  const ListCase& row = GetParam();
  if (!row.answer.empty()) {
    visa_.RuleBody(kWrite, kFrequencyListId, Body(kFrequencyListId, 0x60, row.answer));
  }
  const auto array = Doubles(row.given, row.lower);
  EXPECT_EQ(manager_.SetFrequencyList(array.Get()), 0);
  EXPECT_EQ(ValuesOf(array.Get()), row.back);
  EXPECT_EQ(array.Get()->cLocks, 0U);
  Values sent;
  for (const Request& request : visa_.Requests()) {
    const Values list = request.Elements();  // behind an offset and the number of values
    if (request.id == kFrequencyListId) sent.insert(sent.end(), list.begin() + 2, list.end());
  }
  EXPECT_EQ(sent, row.sent);
  EXPECT_EQ(HasList(kFrequencyListId), !row.sent.empty());
}

const std::vector<ListCase> kListCases = {
    {"Corrected", 0, {1, 2}, {0, 2, 5, 6}, {1, 2}, {5, 6}},
    {"OneBasedSendsOneMore", 1, {1, 2, 3}, {}, {1, 2, 3, 3}, {1, 2, 3}},
    {"BelowZeroLosesTheLast", -1, {1, 2, 3}, {}, {1, 2}, {1, 2, 3}},
    {"Empty", 0, {}, {}, {}, {}},
    {"EmptyFromOne", 1, {}, {}, {}, {}},
    {"AllBelowZero", -9, {1, 2}, {}, {}, {1, 2}},
    {"FarAboveZero", 0x20000, {1}, {}, Values(0x10001, 1), {1}},
};
INSTANTIATE_TEST_SUITE_P(Lists, ListTest, testing::ValuesIn(kListCases), RowName());

TEST_F(ManagerTest, ArrayWithoutATypeMarkIsTakenByTheSizeOfItsElements) {
  // As a client fills it in by hand: nothing says what its elements are.
  struct Case {
    const char* name;
    USHORT features;
    bool has_elements = true;
    ULONG element_size = 8;
  };
  const Case rows[] = {
      {"doubles", 0},
      {"too short", 0, true, 4},
      {"too long", 0, true, 16},
      {"texts", FADF_BSTR},
      {"objects", FADF_UNKNOWN},
      {"objects with an identifier", FADF_UNKNOWN | FADF_HAVEIID},
      {"automation objects", FADF_DISPATCH},
      {"variants", FADF_VARIANT},
      {"records", FADF_RECORD},
      {"nothing behind the descriptor", 0, false},
  };
  Open();
  for (const Case& row : rows) {
    SCOPED_TRACE(row.name);
    Values values = {1e9, 2e9};
    SAFEARRAY array{.cDims = 1,
                    .fFeatures = row.features,
                    .cbElements = row.element_size,
                    .cLocks = 0,
                    .pvData = row.has_elements ? values.data() : nullptr,
                    .rgsabound = {{.cElements = 2, .lLbound = 0}}};
    const bool is_taken = &row == rows;
    const HRESULT result = is_taken ? S_OK : E_INVALIDARG;
    EXPECT_EQ(manager_.SetFrequencyList(nullptr), 0);
    EXPECT_EQ(manager_.SetFrequencyList(&array), result);
    EXPECT_EQ(HasList(kFrequencyListId), is_taken);
    const auto widths = Doubles({1, 1});
    for (SAFEARRAY* const given : {widths.Get(), &array}) {
      EXPECT_EQ(manager_.ConfigurePacket(true, given, &array), result);
      EXPECT_EQ(array.cLocks, 0U);
    }
    EXPECT_THAT(values, ElementsAre(testing::DoubleEq(1e9), testing::DoubleEq(2e9)));
  }
}

TEST_F(ManagerTest, RefusedListIsKept) {
  Open();
  for (const std::uint8_t id : {kFrequencyListId, kPowerListId}) {
    visa_.Rule(kWrite, id, kRefusal, 0, 1);
  }
  EXPECT_EQ(manager_.SetFrequencyList(Doubles({1, 2}).Get()), kRefusalStatus);
  EXPECT_EQ(manager_.SetPowerList(Doubles({1, 2}).Get()), kRefusalStatus);
  EXPECT_TRUE(HasList(kFrequencyListId) && HasList(kPowerListId));
  EXPECT_EQ(manager_.SetFrequencyList(nullptr), 0);
  EXPECT_FALSE(HasList(kFrequencyListId)) << "no array clears it";
}

TEST_F(ManagerTest, ListThatCannotBeLockedLeavesTheWorkerPausedUntilTheNextOperation) {
  Open();
  ASSERT_EQ(manager_.SetPowerList(Doubles({-10}).Get()), 0);
  StartMeasuring();
  const auto array = Doubles({-20});
  array.Get()->cLocks = 0xFFFF;
  EXPECT_EQ(manager_.SetPowerList(array.Get()), E_UNEXPECTED);
  EXPECT_EQ(std::exchange(array.Get()->cLocks, 0), 0xFFFFU);
  visa_.ClearRecord();
  EXPECT_EQ(manager_.GetRfButton().status, 0);
  EXPECT_EQ(visa_.RequestOrder().front(), "4:34/20x1") << "nobody else was reading";
  EXPECT_TRUE(WaitUntilRequested("6", 1));
  EXPECT_TRUE(HasList(kPowerListId)) << "the one before";
}

// --- Packets

struct PacketCase : Row {
  Values widths;  // all in microseconds
  Values delays;
  Values delays_back;
  Values sent;  // none: the values are refused
  LONG lower = 0;
  Values answer = {};       // the pulses of the answer; empty: as sent
  Values widths_back = {};  // empty: as given
};

/// A client's values: seconds.
Values Seconds(Values microseconds) {
  for (double& value : microseconds) value *= 1e-6;
  return microseconds;
}
MATCHER_P(IsAbout, microseconds, "") {
  return testing::ExplainMatchResult(testing::Pointwise(testing::DoubleEq(), Seconds(microseconds)),
                                     arg, result_listener);
}

class PulseTest : public ManagerTest {
 protected:
  /// On, with a double pulse, in a period of 10 us.
  void SwitchOn() {
    Open();
    ASSERT_EQ(manager_.SetPulsePeriod(10'000.0), 0);
    ASSERT_EQ(manager_.SetPulseModEnabled(true), 0);
    ASSERT_EQ(manager_.SetDoublePulseEnabled(true), 0);
  }
  /// Widths and gaps of the train sent last, microseconds.
  [[nodiscard]] Values SentTrain() const {
    Values train = visa_.Requests().back().Elements();
    train.erase(train.begin(), train.begin() + 5);  // mode, source, polarity, offset and count
    for (double& time : train) time /= 1e3;
    return train;
  }
};
const Values kDouble = {0.001, 0, 0.001, 9.998};
class PacketTest : public PulseTest, public testing::WithParamInterface<PacketCase> {};

TEST_P(PacketTest, FillsOnePeriod) {
  SwitchOn();
  const PacketCase& row = GetParam();
  const bool is_taken = !row.sent.empty();
  const auto widths = Doubles(Seconds(row.widths), row.lower);
  const auto delays = Doubles(Seconds(row.delays), row.lower);
  Values answer = {2, 3, 0, 0, 2};
  for (const double time : row.answer) answer.push_back(time * 1e3);
  if (!row.answer.empty()) visa_.RuleBody(kWrite, kPulseId, Body(kPulseId, 0x40, answer), 0, 1);
  EXPECT_EQ(manager_.ConfigurePacket(true, widths.Get(), delays.Get()),
            is_taken ? Status::kOk : Status::kInvalidValue);
  EXPECT_THAT(ValuesOf(widths.Get()),
              IsAbout(row.widths_back.empty() ? row.widths : row.widths_back));
  EXPECT_THAT(ValuesOf(delays.Get()), IsAbout(row.delays_back));
  EXPECT_EQ(SentTrain(), is_taken ? row.sent : kDouble);
  EXPECT_EQ(manager_.GetPulseSettings().packet_enabled, is_taken);
  EXPECT_EQ(manager_.GetPulseSettings().double_enabled, !is_taken);
  EXPECT_EQ(manager_.SetDoublePulseEnabled(true), 0);
  EXPECT_EQ(SentTrain(), kDouble) << "ends the packet";
}

const std::vector<PacketCase> kPacketCases = {
    {"LastDelayIsReplaced", {1, 2}, {1, 9}, {1, 6}, {1, 1, 2, 6}},
    {"LongerThanThePeriod", {6, 6}, {1, 1}, {1, 0}, {6, 1, 6, 0}},
    {"OneBasedSendsOneMore", {1, 2}, {1, 1}, {1, 1}, {1, 1, 2, 1, 2, 3}, 1},
    {"Corrected", {1, 2}, {1, 6}, {3, 4}, {1, 1, 2, 6}, 0, {1.5, 3, 2.5, 4}, {1.5, 2.5}},
    {"CountsDiffer", {1, 1}, {1}, {1}, {}},
    {"NegativeWidth", {1, -1}, {0, 0}, {0, 0}, {}},
    {"NegativeDelay", {1}, {-1}, {-1}, {}},
};
INSTANTIATE_TEST_SUITE_P(Packets, PacketTest, testing::ValuesIn(kPacketCases), RowName());

TEST_F(PulseTest, ARefusedPacketIsToldAndKept) {
  SwitchOn();
  visa_.Rule(kWrite, kPulseId, kRefusal);
  const auto packet = Doubles({1e-6});
  EXPECT_EQ(manager_.ConfigurePacket(true, packet.Get(), packet.Get()), kRefusalStatus);
  EXPECT_TRUE(manager_.GetPulseSettings().packet_enabled);
}

TEST_F(PulseTest, PulsesLongerThanThePeriod) {
  SwitchOn();
  EXPECT_EQ(manager_.SetDoublePulseDelay(1'000.0), 0);
  EXPECT_EQ(SentTrain(), kDouble) << "stored only";
  EXPECT_EQ(manager_.SetDoublePulseEnabled(true), 0);
  EXPECT_THAT(SentTrain(), ElementsAre(0.001, 1, 0.001, 8.998));
  EXPECT_EQ(manager_.SetPulseWidth(6'000.0), 0);
  EXPECT_THAT(SentTrain(), ElementsAre(6, 1, 6, 0));
  EXPECT_EQ(manager_.GetPulseSettings().period, 10'000.0) << "as set";
  EXPECT_EQ(manager_.SetPulsePeriod(5'000.0), 0);
  EXPECT_EQ(manager_.SetDoublePulseEnabled(false), 0);
  EXPECT_THAT(SentTrain(), ElementsAre(6, 0));
  EXPECT_EQ(manager_.GetPulseSettings().period, 6'000.0) << "becomes the pulse's width";
}

TEST_F(ManagerTest, PacketsWithoutAnArray) {
  Open();
  const auto array = Doubles({1e-6});
  const auto empty = Doubles({});
  EXPECT_EQ(manager_.ConfigurePacket(true, array.Get(), nullptr), Status::kInvalidValue);
  EXPECT_EQ(manager_.ConfigurePacket(true, nullptr, array.Get()), Status::kInvalidValue);
  EXPECT_EQ(array.Get()->cLocks, 0U);
  EXPECT_EQ(manager_.ConfigurePacket(true, empty.Get(), empty.Get()), Status::kInvalidValue);
  EXPECT_EQ(empty.Get()->cLocks, 1U) << "kept: it stays locked";
  SafeArrayUnlock(empty.Get());
  EXPECT_EQ(manager_.ConfigurePacket(true, nullptr, nullptr), 0) << "of no pulses, not sent yet";
  EXPECT_EQ(manager_.SetPulseModEnabled(true), Status::kInvalidValue);
}

}  // namespace
