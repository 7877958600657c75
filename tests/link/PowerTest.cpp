// The power axis: how the instrument's generation is found out, and each generation's forms.
#include "tests/link/LinkFixture.h"

namespace {

using testing::ElementsAre;

constexpr std::uint16_t kNo = 0x8003;  // the form is not known
const LevelSettings kLevelSettings{1, AttenMode::kMinHarmonics, 3, 4};

class PowerTest : public LinkTest {
 protected:
  Status SetLevel() { return model_.SetOutputLevel(settings_, level_); }

  LevelSettings settings_ = kLevelSettings;
  double level_ = -10.5;
};

struct VariantCase : Row {
  /// Of the probe's writes in their order; a negative one is followed by a recovery.
  std::vector<std::uint16_t> statuses;
  const char* writes;  // probe, then the level itself; of parameter 79 unless said otherwise
  std::uint32_t variant;
  bool is_settled =
      true;  // else an answer told nothing of the form, and the next level probes again
};

class VariantTest : public PowerTest, public testing::WithParamInterface<VariantCase> {};

TEST_P(VariantTest, ProbesUntilTheInstrumentHasToldAndThenSpeaksTheVariant) {
  Answer(GetParam().statuses);
  EXPECT_EQ(SetLevel(), 0);
  std::string writes;
  for (const std::string& name : visa_.RequestOrder()) {
    if (name != "1") writes += ' ' + name.substr(name.starts_with("3:79/") ? 5 : 0);
  }
  EXPECT_EQ(writes.substr(1), GetParam().writes);
  EXPECT_EQ(model_.power_variant(), GetParam().variant);
  EXPECT_EQ(level_, -10.5);

  const Request last = visa_.Requests().back();
  visa_.ClearRecord();
  EXPECT_EQ(SetLevel(), 0);
  if (GetParam().is_settled) {
    EXPECT_THAT(visa_.Requests(), ElementsAre(last));
  } else {
    EXPECT_THAT(visa_.RequestOrder(), ElementsAre("3:79/62x5", "3:79/62x8", "3:79/62x5"));
    EXPECT_EQ(model_.power_variant(), 5U);
  }
}

constexpr std::uint16_t kPll = 0x8007;
constexpr std::uint16_t kErg = 0x801C;
constexpr std::uint16_t kOther = 0x8002;
const std::vector<VariantCase> kVariantCases = {
    {"Five", {0, 0}, "62x5 62x8 62x5", 5},
    {"FiveUnusableStaysThree", {0, 2}, "62x5 62x8 62x5", 3},
    {"NoticeIsAccepted", {1, 3}, "62x5 62x8 62x5", 5},
    {"Three", {0, kNo}, "62x5 62x8 62x5", 3},
    {"ThreeByAnyFailure", {0, kPll}, "62x5 62x8 62x5", 3},
    {"Four", {kNo, 0, 0}, "62x5 42x5 42x8 42x5", 4},
    {"FourUnusableIsTwo", {kNo, 0, 2}, "62x5 42x5 42x8 42x5", 2},
    {"TwoByLongForm", {kNo, 0, kNo, 0}, "62x5 42x5 42x8 42x7 42x5", 2},
    {"OtherRefusalOfStopFormIsTwo", {kNo, 0, 0x8005}, "62x5 42x5 42x8 42x5", 2},
    {"LongFormRefusedStaysThree", {kNo, 0, kNo, kNo}, "62x5 42x5 42x8 42x7 62x5", 3},
    {"LongFormUnusableStaysThree", {kNo, 0, kNo, 2}, "62x5 42x5 42x8 42x7 62x5", 3},
    {"One", {kNo, kNo, 0}, "62x5 42x5 3:12/21x2 3:12/42x2", 1},
    {"ZeroOnlyAtTheSecondTry", {kNo, kNo, kNo, 0}, "62x5 42x5 3:12/21x2 3:12/21x2 3:12/21x2", 0},
    {"NothingAcceptedStaysThree", {kNo, kNo, kNo, kNo}, "62x5 42x5 3:12/21x2 3:12/21x2 62x5", 3},
    {"NothingKnownStaysThree", {kOther, kNo, kOther, kNo}, "62x5 42x5 3:12/21x2 3:12/21x2 62x5", 3},
    {"Unlocked", {kPll, kPll, kPll, kPll}, "62x5 42x5 3:12/21x2 3:12/21x2 62x5", 3, false},
    {"UnlockedAtFirst", {kPll, 0, 0}, "62x5 42x5 42x8 42x5", 4, false},
    {"UnlockedAtLast", {kNo, kOther, kNo, kPll}, "62x5 42x5 3:12/21x2 3:12/21x2 62x5", 3, false},
    {"UnlockedInTheMiddle",
     {kOther, kNo, kPll, 0},
     "62x5 42x5 3:12/21x2 3:12/21x2 3:12/21x2",
     0,
     false},
    {"FaultAtFirst", {kErg, kNo, kNo, kNo}, "62x5 42x5 3:12/21x2 3:12/21x2 62x5", 3, false},
};
INSTANTIATE_TEST_SUITE_P(Variants, VariantTest, testing::ValuesIn(kVariantCases), RowName());

TEST_F(PowerTest, LongFormIsProbedWithOnePoint) {
  Answer({kNo, 0, kNo, 0});
  EXPECT_EQ(SetLevel(), 0);
  EXPECT_EQ(visa_.Requests()[5], Write(79, 0x42, {1, 2, 3, 4, -10.5, 1, 0}));
}

TEST_F(PowerTest, LevelAndItsSettingsAreTakenFromTheAnswerBehindTheProbe) {
  Answer({0, 0});
  visa_.Answer(0, Body(79, 0x62, {0, 5, 6, 7, -10}));
  EXPECT_EQ(SetLevel(), 0);
  EXPECT_EQ(level_, -10.0);
  EXPECT_EQ(settings_.level_control, 0U);
  EXPECT_EQ(settings_.atten_mode, AttenMode::kCare);
  EXPECT_EQ(settings_.further_1, 6U);
  EXPECT_EQ(settings_.further_2, 7U);
}

std::size_t Lost(std::uint8_t* /*answer*/, std::size_t /*size*/) { return 0; }

TEST_F(PowerTest, LostLinkEndsTheProbeWhichIsMadeAgain) {
  for (const std::uint32_t answered : {0U, 1U}) {  // none, or that of the level's form
    D3THardWare model(exchanger_);
    visa_.SpoilAnswer({.after = answered, .change = Lost, .then = scripted::kConnectionLost});
    EXPECT_EQ(model.SetOutputLevel(settings_, level_), scripted::kConnectionLost);
    EXPECT_TRUE(visa_.LinkIsBack());
    visa_.ClearRecord();
    EXPECT_EQ(model.SetOutputLevel(settings_, level_), 0);
    EXPECT_THAT(visa_.RequestOrder(), ElementsAre("3:79/62x5", "3:79/62x8", "3:79/62x5"));
  }
}

// --- Levels and sweeps by variant

struct SweepCase {
  std::uint32_t variant;
  std::vector<std::uint16_t> statuses;  // of the probe that finds it
  const char* state_request;
  unsigned id, type;  // of the sweep's form; 0: there is none
  std::size_t count;  // of its elements
};

TEST_F(PowerTest, LevelStateAndSweepHaveTheirVariantsForms) {
  const SweepCase rows[] = {
      {0, {kNo, kNo, kNo, 0}, "4:12/21x2", 0, 0, 0},   {1, {kNo, kNo, 0}, "4:12/21x2", 12, 0x42, 4},
      {2, {kNo, 0, 0x8005}, "4:79/42x5", 79, 0x42, 7}, {3, {0, kNo}, "4:79/62x5", 79, 0x62, 7},
      {4, {kNo, 0, 0}, "4:79/42x5", 79, 0x42, 8},      {5, {0, 0}, "4:79/62x5", 79, 0x62, 8},
  };
  for (const SweepCase& row : rows) {
    SCOPED_TRACE(row.variant);
    D3THardWare model(exchanger_);
    LevelSettings settings = kLevelSettings;
    double start = -60;
    Answer(row.statuses);
    ASSERT_EQ(model.SetOutputLevel(settings, start), 0);
    ASSERT_EQ(model.power_variant(), row.variant);
    visa_.ClearRecord();
    bool settled = false;
    EXPECT_EQ(model.ReadLevelState(settled), 0);
    EXPECT_THAT(visa_.RequestOrder(), ElementsAre(row.state_request));
    visa_.ClearRecord();
    StepSettings sweep{.start = start, .stop = -50, .step = 2.5};
    if (row.id == 0) {
      EXPECT_EQ(model.SetPowerSweep(settings, sweep), -1);
      EXPECT_TRUE(visa_.Requests().empty());
      continue;
    }
    const bool is_simple = row.id == 12;
    std::vector<double> sent = is_simple ? std::vector<double>{1} : std::vector<double>{1, 2, 3, 4};
    std::vector<double> answer = sent;
    sent.insert(sent.end(), {-60, 5, 2.5, -50});
    answer.insert(answer.end(), {-59, 3, 2, -50});
    sent.resize(row.count);
    visa_.Answer(0, Body(row.id, row.type, answer));
    EXPECT_EQ(model.SetPowerSweep(settings, sweep), 0);
    EXPECT_THAT(visa_.Requests(), ElementsAre(Write(row.id, row.type, sent)));
    EXPECT_THAT(Elements(sweep), ElementsAre(-59, row.count == 8 ? -50 : -55, 2));
  }
}

TEST_F(PowerTest, DownwardPowerSweepTakesNegativeStepAndCountIsBounded) {
  struct Case {
    StepSettings sweep;
    double points;
    double step;
  };
  for (Case row : {Case{{-50, -60, 1}, 11, -1}, Case{{-50, -60, -1}, 11, -1},
                   Case{{-60, -50, 0}, 1, 0}, Case{{-60, -50, 1e-9}, 32767, 0}}) {
    visa_.ClearRecord();
    const Request sent = Write(79, 0x62, {1, 2, 3, 4, row.sweep.start, row.points, row.step});
    EXPECT_EQ(model_.SetPowerSweep(settings_, row.sweep), 0);
    EXPECT_THAT(visa_.Requests(), ElementsAre(sent));
  }
}

// --- The state at connection

TEST_F(PowerTest, OutputStateTriesOlderFormsUntilOneIsKnown) {
  struct Case {
    std::vector<std::uint16_t> statuses;
    Bytes body;
    ResultCode result;
    double level;
  };
  const Case rows[] = {
      {{kNo, 0}, Body(79, 0x42, {1, 2, 0, 0, -60}), 0, -60},
      {{0x8002, kNo, 6}, Body(12, 0x21, {1, -59.5}), 6, -59.5},
      {{kNo, kNo, kNo}, {}, -32765, 99},
      {{kNo, 0x8005}, {}, -32763, 99},
  };
  for (const Case& row : rows) {
    visa_.ClearRecord();
    Answer(row.statuses, row.body);
    std::vector<std::string> order = {"4:79/62x5", "1", "4:79/42x5", "1", "4:12/21x2", "1"};
    order.resize(2 * row.statuses.size() - (row.result.number < 0 ? 0 : 1));
    LevelSettings settings;
    double level = 99;
    EXPECT_EQ(model_.ReadOutputState(settings, level), row.result);
    EXPECT_EQ(visa_.RequestOrder(), order);
    EXPECT_EQ(level, row.level);
    EXPECT_EQ(settings.level_control, row.result.number < 0 ? 0U : 1U);
  }
}

}  // namespace
