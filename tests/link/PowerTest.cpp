// The power axis: how the instrument's generation is found out, and each generation's forms.
#include "tests/link/LinkFixture.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

struct VariantCase : Row {
  /// Of the probe's writes in their order; a negative one is followed by a recovery.
  std::vector<std::uint16_t> statuses;
  std::vector<std::string> writes;  // probe, then the level itself
  std::uint32_t variant;
};

class VariantTest : public LinkTest, public testing::WithParamInterface<VariantCase> {};

TEST_P(VariantTest, ProbesOnceAndThenSpeaksTheVariant) {
  Answer(GetParam().statuses);
  LevelSettings settings{
      .level_control = 1, .atten_mode = AttenMode::kMinHarmonics, .further_1 = 3, .further_2 = 4};
  double level = -10.5;
  EXPECT_EQ(model_.SetOutputLevel(settings, level), 0);
  std::vector<std::string> writes = visa_.RequestOrder();
  std::erase(writes, "1");
  EXPECT_THAT(writes, ElementsAreArray(GetParam().writes));
  EXPECT_EQ(model_.power_variant(), GetParam().variant);
  EXPECT_EQ(level, -10.5);

  visa_.ClearRecord();
  EXPECT_EQ(model_.SetOutputLevel(settings, level), 0);
  EXPECT_THAT(visa_.RequestOrder(), ElementsAre(GetParam().writes.back()));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Variants, VariantTest,
    testing::ValuesIn(std::vector<VariantCase>{
        {"Five", {0, 0}, {"3:79/62x5", "3:79/62x8", "3:79/62x5"}, 5},
        {"FiveUnusableStaysThree", {0, 2}, {"3:79/62x5", "3:79/62x8", "3:79/62x5"}, 3},
        {"NoticeIsAccepted", {1, 3}, {"3:79/62x5", "3:79/62x8", "3:79/62x5"}, 5},
        {"Three", {0, 0x8003}, {"3:79/62x5", "3:79/62x8", "3:79/62x5"}, 3},
        {"Four", {0x8003, 0, 0}, {"3:79/62x5", "3:79/42x5", "3:79/42x8", "3:79/42x5"}, 4},
        {"FourUnusableIsTwo", {0x8003, 0, 2}, {"3:79/62x5", "3:79/42x5", "3:79/42x8", "3:79/42x5"}, 2},
        {"TwoByLongForm", {0x8003, 0, 0x8003, 0}, {"3:79/62x5", "3:79/42x5", "3:79/42x8", "3:79/42x7", "3:79/42x5"}, 2},
        {"OtherRefusalOfStopFormIsTwo", {0x8003, 0, 0x8005}, {"3:79/62x5", "3:79/42x5", "3:79/42x8", "3:79/42x5"}, 2},
        {"LongFormRefusedStaysThree", {0x8003, 0, 0x8003, 0x8003}, {"3:79/62x5", "3:79/42x5", "3:79/42x8", "3:79/42x7", "3:79/62x5"}, 3},
        {"LongFormUnusableStaysThree", {0x8003, 0, 0x8003, 2}, {"3:79/62x5", "3:79/42x5", "3:79/42x8", "3:79/42x7", "3:79/62x5"}, 3},
        {"One", {0x8003, 0x8003, 0}, {"3:79/62x5", "3:79/42x5", "3:12/21x2", "3:12/42x2"}, 1},
        {"ZeroOnlyAtTheSecondTry", {0x8003, 0x8003, 0x8003, 0}, {"3:79/62x5", "3:79/42x5", "3:12/21x2", "3:12/21x2", "3:12/21x2"}, 0},
        {"NothingAcceptedStaysThree", {0x8003, 0x8003, 0x8003, 0x8003}, {"3:79/62x5", "3:79/42x5", "3:12/21x2", "3:12/21x2", "3:79/62x5"}, 3},
    }),
    RowName());
// clang-format on

TEST_F(LinkTest, LongFormIsProbedWithOnePoint) {
  Answer({0x8003, 0, 0x8003, 0});
  LevelSettings settings;
  double level = -10.5;
  EXPECT_EQ(model_.SetOutputLevel(settings, level), 0);
  EXPECT_EQ(Requests()[5],
            WriteRequest(7, 0x42,
                         "4F 00 | 00 00 00 00 | 00 00 00 00 | 00 00 00 00 | 00 00 00 00 |"
                         "00 80 F5 FF | 00 00 01 00 | 00 00 00 00"));
}

/// An answer that tells nothing of the form does not settle the variant.
TEST_F(LinkTest, ProbeIsRepeatedUntilTheInstrumentHasTold) {
  constexpr std::uint16_t kPllUnlocked = 0x8007;
  constexpr std::uint16_t kErgFault = 0x801C;
  struct Case {
    std::vector<std::uint16_t> statuses;  // of the first level's probe
    std::uint32_t variant;
    bool is_settled;
  };
  const Case rows[] = {
      {{kPllUnlocked, kPllUnlocked, kPllUnlocked, kPllUnlocked}, 3, false},
      {{kErgFault, 0x8003, 0x8003, 0x8003}, 3, false},
      {{0x8003, 0x8002, 0x8003, kPllUnlocked}, 3, false},
      {{kPllUnlocked, 0, 0}, 4, false},
      {{0x8002, 0x8003, kPllUnlocked, 0}, 0, false},
      {{0x8002, 0x8003, 0x8002, 0x8003}, 3, true},
      {{0, kPllUnlocked}, 3, true},
  };
  for (const Case& row : rows) {
    D3THardWare model(exchanger_);
    LevelSettings settings;
    double level = 0;
    Answer(row.statuses);
    EXPECT_EQ(model.SetOutputLevel(settings, level), 0);
    EXPECT_EQ(model.power_variant(), row.variant);
    visa_.ClearRecord();
    EXPECT_EQ(model.SetOutputLevel(settings, level), 0);
    EXPECT_EQ(visa_.RequestOrder().size(), row.is_settled ? 1U : 3U);
    EXPECT_EQ(model.power_variant(), row.is_settled ? row.variant : 5U);
  }
}

TEST_F(LinkTest, LevelAndItsSettingsAreTakenFromTheAnswerBehindTheProbe) {
  LevelSettings settings{
      .level_control = 1, .atten_mode = AttenMode::kMinHarmonics, .further_1 = 3, .further_2 = 4};
  double level = -10.5;
  visa_.Answer(0);
  visa_.Answer(0);
  visa_.Answer(0,
               "4F 00 | 00 00 00 00 00 00 | 00 00 05 00 00 00 | 00 00 06 00 00 00 |"
               "00 00 07 00 00 00 | 00 00 F6 FF FF FF");
  EXPECT_EQ(model_.SetOutputLevel(settings, level), 0);
  EXPECT_EQ(level, -10.0);
  EXPECT_EQ(settings.level_control, 0U);
  EXPECT_EQ(settings.atten_mode, AttenMode::kCare);
  EXPECT_EQ(settings.further_1, 6U);
  EXPECT_EQ(settings.further_2, 7U);
}

TEST_F(LinkTest, LostLinkEndsTheProbeWhichIsMadeAgain) {
  visa_.SetResult(scripted::Function::kRead, 0xBFFF00A6, 1);
  LevelSettings settings;
  double level = 0;
  EXPECT_EQ(model_.SetOutputLevel(settings, level), scripted::kConnectionLost);
  EXPECT_EQ(Requests().size(), 1U);
  visa_.control().Reset();
  EXPECT_EQ(model_.SetOutputLevel(settings, level), 0);
  EXPECT_EQ(Requests().size(), 3U);
}

// --- Levels and sweeps by variant
// ----------------------------------------------------------------------

struct SweepCase {
  std::uint32_t variant;
  std::vector<std::uint16_t> statuses;
  std::string request;
  const char* answer;
  double stop;
  const char* state_request;
};

class PowerSweepTest : public LinkTest, public testing::WithParamInterface<SweepCase> {};

TEST_P(PowerSweepTest, UsesItsForm) {
  LevelSettings settings{
      .level_control = 1, .atten_mode = AttenMode::kMinHarmonics, .further_1 = 0, .further_2 = 0};
  double start = -60;
  Answer(GetParam().statuses);
  ASSERT_EQ(model_.SetOutputLevel(settings, start), 0);
  ASSERT_EQ(model_.power_variant(), GetParam().variant);
  visa_.ClearRecord();
  bool settled = false;
  EXPECT_EQ(model_.ReadLevelState(settled), 0);
  EXPECT_THAT(visa_.RequestOrder(), ElementsAre(GetParam().state_request));
  visa_.ClearRecord();
  StepSettings sweep{.start = start, .stop = -50, .step = 2.5};
  if (GetParam().variant == 0) {
    EXPECT_EQ(model_.SetPowerSweep(settings, sweep), -1);
    EXPECT_TRUE(Requests().empty());
    return;
  }
  visa_.Answer(0, GetParam().answer);
  EXPECT_EQ(model_.SetPowerSweep(settings, sweep), 0);
  EXPECT_THAT(Requests(), ElementsAre(GetParam().request));
  EXPECT_THAT(Elements(sweep), ElementsAre(-59, GetParam().stop, 2));
}

constexpr const char* kAnswer42 =
    "4F 00 | 00 00 01 00 | 00 00 02 00 | 00 00 00 00 | 00 00 00 00 | 00 00 C5 FF | 00 00 03 00 |"
    "00 00 02 00 | 00 00 CE FF";
constexpr const char* kAnswer62 =
    "4F 00 | 00 00 01 00 00 00 | 00 00 02 00 00 00 | 00 00 00 00 00 00 | 00 00 00 00 00 00 |"
    "00 00 C5 FF FF FF | 00 00 03 00 00 00 | 00 00 02 00 00 00 | 00 00 CE FF FF FF";
constexpr const char* kSweep42 =
    "4F 00 | 00 00 01 00 | 00 00 02 00 | 00 00 00 00 | 00 00 00 00 | 00 00 C4 FF | 00 00 05 00 |"
    "00 80 02 00";
constexpr const char* kSweep62 =
    "4F 00 | 00 00 01 00 00 00 | 00 00 02 00 00 00 | 00 00 00 00 00 00 | 00 00 00 00 00 00 |"
    "00 00 C4 FF FF FF | 00 00 05 00 00 00 | 00 80 02 00 00 00";

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    ByVariant, PowerSweepTest,
    testing::ValuesIn(std::vector<SweepCase>{
        {0, {0x8003, 0x8003, 0x8003, 0}, "", "", 0, "4:12/21x2"},
        {1, {0x8003, 0x8003, 0}, WriteRequest(4, 0x42, "0C 00 | 00 00 01 00 | 00 00 C4 FF | 00 00 05 00 | 00 80 02 00"), "0C 00 | 00 00 01 00 | 00 00 C5 FF | 00 00 03 00 | 00 00 02 00", -55, "4:12/21x2"},
        {2, {0x8003, 0, 0x8005}, WriteRequest(7, 0x42, kSweep42), kAnswer42, -55, "4:79/42x5"},
        {3, {0, 0x8003}, WriteRequest(7, 0x62, kSweep62), kAnswer62, -55, "4:79/62x5"},
        {4, {0x8003, 0, 0}, WriteRequest(8, 0x42, std::string(kSweep42) + "| 00 00 CE FF"), kAnswer42, -50, "4:79/42x5"},
        {5, {0, 0}, WriteRequest(8, 0x62, std::string(kSweep62) + "| 00 00 CE FF FF FF"), kAnswer62, -50, "4:79/62x5"},
    }));
// clang-format on

TEST_F(LinkTest, DownwardPowerSweepTakesNegativeStepAndCountIsBounded) {
  struct Case {
    StepSettings sweep;
    const char* points_and_step;
  };
  for (Case row : {Case{{-50, -60, 1}, "00 00 0B 00 00 00 00 00 FF FF FF FF"},
                   Case{{-50, -60, -1}, "00 00 0B 00 00 00 00 00 FF FF FF FF"},
                   Case{{-60, -50, 0}, "00 00 01 00 00 00 00 00 00 00 00 00"},
                   Case{{-60, -50, 1e-9}, "00 00 FF 7F 00 00 00 00 00 00 00 00"}}) {
    visa_.ClearRecord();
    LevelSettings settings;
    EXPECT_EQ(model_.SetPowerSweep(settings, row.sweep), 0);
    EXPECT_THAT(Requests(), ElementsAre(testing::EndsWith(row.points_and_step)));
  }
}

// --- The state at connection
// ---------------------------------------------------------------------------

TEST_F(LinkTest, OutputStateTriesOlderFormsUntilOneIsKnown) {
  struct Case {
    std::vector<std::uint16_t> statuses;
    const char* body;
    std::vector<std::string> order;
    ResultCode result;
    double level;
  };
  // clang-format off
  const Case rows[] = {
      {{0x8003, 0}, "4F 00 | 00 00 01 00 | 00 00 02 00 | 00 00 00 00 | 00 00 00 00 | 00 00 C4 FF", {"4:79/62x5", "1", "4:79/42x5"}, 0, -60},
      {{0x8002, 0x8003, 6}, "0C 00 | 00 01 | 80 C4", {"4:79/62x5", "1", "4:79/42x5", "1", "4:12/21x2"}, 6, -59.5},
      {{0x8003, 0x8003, 0x8003}, "", {"4:79/62x5", "1", "4:79/42x5", "1", "4:12/21x2", "1"}, -32765, 99},
      {{0x8003, 0x8005}, "", {"4:79/62x5", "1", "4:79/42x5", "1"}, -32763, 99},
  };
  // clang-format on
  for (const Case& row : rows) {
    visa_.ClearRecord();
    Answer(row.statuses, row.body);
    LevelSettings settings;
    double level = 99;
    EXPECT_EQ(model_.ReadOutputState(settings, level), row.result);
    EXPECT_THAT(visa_.RequestOrder(), ElementsAreArray(row.order));
    EXPECT_EQ(level, row.level);
    EXPECT_EQ(settings.level_control, row.result.number < 0 ? 0U : 1U);
  }
}

}  // namespace
