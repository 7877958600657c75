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
  std::string answer;  // to the list; empty: as sent
  Values sent;         // nothing: a list that is not there
  Values back;
};

class ListTest : public ManagerTest, public testing::WithParamInterface<ListCase> {};

TEST_P(ListTest, IsSentFromItsFirstElementAndComesBackCorrected) {
  Open();
  const ListCase& row = GetParam();
  if (!row.answer.empty()) visa_.RuleBody(kWrite, kFrequencyListId, 0, row.answer);
  const auto array = Doubles(row.given, row.lower);
  EXPECT_EQ(manager_.SetFrequencyList(array.Get()), 0);
  EXPECT_EQ(ValuesOf(array.Get()), row.back);
  EXPECT_EQ(array.Get()->cLocks, 0U);
  Values sent;
  for (const auto& write : visa_.Calls(scripted::Function::kWrite)) {
    if (write.size < 14 || write.bytes[0] != kFrequencyListId) continue;
    for (std::size_t i = 14; i < write.size; i += 6) sent.push_back(write.bytes[i]);
  }
  EXPECT_EQ(sent, row.sent);
  EXPECT_EQ(HasList(kFrequencyListId), !row.sent.empty());
}

// clang-format off
const std::vector<ListCase> kListCases = {
    {"Corrected", 0, {1, 2}, "02 00 | 00 00 00 00 00 00 | 02 00 00 00 00 00 | 05 00 00 00 00 00 |06 00 00 00 00 00", {1, 2}, {5, 6}},
    {"OneBasedSendsOneMore", 1, {1, 2, 3}, "", {1, 2, 3, 3}, {1, 2, 3}},
    {"BelowZeroLosesTheLast", -1, {1, 2, 3}, "", {1, 2}, {1, 2, 3}},
    {"Empty", 0, {}, "", {}, {}},
    {"EmptyFromOne", 1, {}, "", {}, {}},
    {"AllBelowZero", -9, {1, 2}, "", {}, {1, 2}},
    {"FarAboveZero", 0x20000, {1}, "", Values(0x10001, 1), {1}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Lists, ListTest, testing::ValuesIn(kListCases), RowName());

/// A descriptor that a client filled in by hand: nothing says what its elements are.
struct UnmarkedCase {
  const char* name;
  USHORT features;
  ULONG element_size;
  bool has_elements;
  bool is_taken;
};
const std::array kUnmarkedCases{
    UnmarkedCase{"doubles", 0, 8, true, true},
    UnmarkedCase{"too short", 0, 4, true, false},
    UnmarkedCase{"too long", 0, 16, true, false},
    UnmarkedCase{"texts", FADF_BSTR, 8, true, false},
    UnmarkedCase{"objects", FADF_UNKNOWN, 8, true, false},
    UnmarkedCase{"objects with an identifier", FADF_UNKNOWN | FADF_HAVEIID, 8, true, false},
    UnmarkedCase{"automation objects", FADF_DISPATCH, 8, true, false},
    UnmarkedCase{"variants", FADF_VARIANT, 8, true, false},
    UnmarkedCase{"records", FADF_RECORD, 8, true, false},
    UnmarkedCase{"nothing behind the descriptor", 0, 8, false, false},
};

TEST_F(ManagerTest, ArrayWithoutATypeMarkIsTakenByTheSizeOfItsElements) {
  Open();
  for (const UnmarkedCase& row : kUnmarkedCases) {
    SCOPED_TRACE(row.name);
    Values values = {1e9, 2e9};
    SAFEARRAY array{.cDims = 1,
                    .fFeatures = row.features,
                    .cbElements = row.element_size,
                    .cLocks = 0,
                    .pvData = row.has_elements ? values.data() : nullptr,
                    .rgsabound = {{.cElements = 2, .lLbound = 0}}};
    EXPECT_EQ(manager_.SetFrequencyList(nullptr), 0);
    EXPECT_EQ(manager_.SetFrequencyList(&array), row.is_taken ? S_OK : E_INVALIDARG);
    EXPECT_EQ(HasList(kFrequencyListId), row.is_taken);
    const auto widths = Doubles({1, 1});
    for (SAFEARRAY* const given : {widths.Get(), &array}) {
      EXPECT_EQ(manager_.ConfigurePacket(true, given, &array), row.is_taken ? S_OK : E_INVALIDARG);
      EXPECT_EQ(array.cLocks, 0U);
    }
    EXPECT_THAT(values, ElementsAre(testing::DoubleEq(1e9), testing::DoubleEq(2e9)));
  }
}

TEST_F(ManagerTest, RefusedListIsKept) {
  Open();
  for (const std::uint8_t id : {kFrequencyListId, kPowerListId})
    visa_.Rule(kWrite, id, kRefusal, 0, 1);
  EXPECT_EQ(manager_.SetFrequencyList(Doubles({1, 2}).Get()), kRefusalStatus);
  EXPECT_EQ(manager_.SetPowerList(Doubles({1, 2}).Get()), kRefusalStatus);
  EXPECT_EQ(ErrorRecords(), Refusals({601, 641, 602, 642}));
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
  Values widths;  // seconds
  Values delays;
  ResultCode result;
  Values delays_back;
  std::vector<unsigned> sent;  // nanoseconds; kDouble: the train before
  LONG lower = 0;
  std::string answer = {};  // to the train; empty: as sent
  Values widths_back = {};  // empty: as given
};

class PulseTest : public ManagerTest {
 protected:
  /// On, with a double pulse, in a period of 10 us.
  void SwitchOn() {
    Open();
    ASSERT_EQ(manager_.SetPulsePeriod(10'000.0), 0);
    ASSERT_EQ(manager_.SetPulseModEnabled(true), 0);
    ASSERT_EQ(manager_.SetDoublePulseEnabled(true), 0);
  }
  /// Widths and gaps of the train sent last, nanoseconds.
  [[nodiscard]] std::vector<unsigned> SentTrain() const {
    constexpr std::size_t kFirst = 22;  // byte, behind mode, source, polarity, offset and count
    const auto train = visa_.Calls(scripted::Function::kWrite).back();
    std::vector<unsigned> times;
    for (std::size_t i = kFirst; i + 4 <= train.size; i += 4) {
      times.push_back(train.bytes[i] | train.bytes[i + 1] << 8U | train.bytes[i + 2] << 16U);
    }
    return times;
  }
};
const std::vector<unsigned> kDouble = {1, 0, 1, 9'998};
class PacketTest : public PulseTest, public testing::WithParamInterface<PacketCase> {};

TEST_P(PacketTest, FillsOnePeriod) {
  SwitchOn();
  const PacketCase& row = GetParam();
  const auto widths = Doubles(row.widths, row.lower);
  const auto delays = Doubles(row.delays, row.lower);
  if (!row.answer.empty()) visa_.RuleBody(kWrite, kPulseId, 0, row.answer, 0, 1);
  EXPECT_EQ(manager_.ConfigurePacket(true, widths.Get(), delays.Get()), row.result);
  EXPECT_THAT(ValuesOf(widths.Get()),
              testing::Pointwise(testing::DoubleEq(),
                                 row.widths_back.empty() ? row.widths : row.widths_back));
  EXPECT_THAT(ValuesOf(delays.Get()), testing::Pointwise(testing::DoubleEq(), row.delays_back));
  EXPECT_EQ(SentTrain(), row.sent);
  EXPECT_EQ(manager_.GetPulseSettings().packet_enabled, Status::kOk == row.result);
  EXPECT_EQ(manager_.GetPulseSettings().double_enabled, Status::kOk != row.result);
  EXPECT_EQ(manager_.SetDoublePulseEnabled(true), 0);
  EXPECT_EQ(SentTrain(), kDouble) << "ends the packet";
}

// clang-format off
const std::vector<PacketCase> kPacketCases = {
    {"LastDelayIsReplaced", {1e-6, 2e-6}, {1e-6, 9e-6}, 0, {1e-6, 6e-6}, {1'000, 1'000, 2'000, 6'000}},
    {"LongerThanThePeriod", {6e-6, 6e-6}, {1e-6, 1e-6}, 0, {1e-6, 0}, {6'000, 1'000, 6'000, 0}},
    {"OneBasedSendsOneMore", {1e-6, 2e-6}, {1e-6, 1e-6}, 0, {1e-6, 1e-6}, {1'000, 1'000, 2'000, 1'000, 2'000, 3'000}, 1},
    {"Corrected", {1e-6, 2e-6}, {1e-6, 6e-6}, 0, {3e-6, 4e-6}, {1'000, 1'000, 2'000, 6'000}, 0,
     "1F 00 | 02 00 00 00 | 03 00 00 00 | 00 00 00 00 | 00 00 00 00 | 02 00 00 00 |"
     "DC 05 00 00 | B8 0B 00 00 | C4 09 00 00 | A0 0F 00 00", {1.5e-6, 2.5e-6}},
    {"CountsDiffer", {1e-6, 1e-6}, {1e-6}, Status::kInvalidValue, {1e-6}, kDouble},
    {"NegativeWidth", {1e-6, -1e-6}, {0, 0}, Status::kInvalidValue, {0, 0}, kDouble},
    {"NegativeDelay", {1e-6}, {-1e-6}, Status::kInvalidValue, {-1e-6}, kDouble},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Packets, PacketTest, testing::ValuesIn(kPacketCases), RowName());

TEST_F(PulseTest, PulsesLongerThanThePeriod) {
  SwitchOn();
  EXPECT_EQ(manager_.SetDoublePulseDelay(1'000.0), 0);
  EXPECT_EQ(SentTrain(), kDouble) << "stored only";
  EXPECT_EQ(manager_.SetDoublePulseEnabled(true), 0);
  EXPECT_THAT(SentTrain(), ElementsAre(1U, 1'000U, 1U, 8'998U));
  EXPECT_EQ(manager_.SetPulseWidth(6'000.0), 0);
  EXPECT_THAT(SentTrain(), ElementsAre(6'000U, 1'000U, 6'000U, 0U));
  EXPECT_EQ(manager_.GetPulseSettings().period, 10'000.0) << "as set";
  EXPECT_EQ(manager_.SetPulsePeriod(5'000.0), 0);
  EXPECT_EQ(manager_.SetDoublePulseEnabled(false), 0);
  EXPECT_THAT(SentTrain(), ElementsAre(6'000U, 0U));
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
