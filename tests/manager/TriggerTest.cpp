// Trigger input and output: codes both ways, and the line of the sync generator.
#include "tests/manager/ManagerFixture.h"

namespace {

using enum TriggerAction;
using enum TriggerSource;
using Mode = TriggerOutputMode;

using Values = std::vector<double>;

auto Fields(const SweepTriggerSettings& trigger) {
  return std::tuple(trigger.source, trigger.action, trigger.falling_edge, trigger.single_step);
}

/// What was written to trigger parameters: the identifier and the elements of one line.
std::vector<Values> Written(const scripted::Visa& visa, std::ptrdiff_t line) {
  std::vector<Values> written;
  for (const Request& request : visa.Requests()) {
    if (request.command != kWrite) continue;
    Values elements = request.Elements();
    elements = Values(elements.begin() + 5 * line, elements.begin() + 5 * (line + 1));
    elements.insert(elements.begin(), request.id);
    written.push_back(elements);
  }
  return written;
}

struct TriggerCase : Row {
  SweepTriggerSettings trigger;
  std::vector<Values> sent;                       // identifier and first line
  Values answer;                                  // of the first line; none: as sent
  std::optional<SweepTriggerSettings> kept = {};  // none: as set
  ResultCode result = 0;
};

class TriggerTest : public ManagerTest, public testing::WithParamInterface<TriggerCase> {};

TEST_P(TriggerTest, MapsBothWays) {
  OpenAndMeasure();
  const TriggerCase& row = GetParam();
  if (!row.answer.empty()) {
    visa_.RuleBody(kWrite, kTriggerInputId, Body(kTriggerInputId, 0x10, row.answer), 0, 1);
  }
  EXPECT_EQ(manager_.SetSweepTrigger(row.trigger), row.result);
  EXPECT_EQ(Written(visa_, 0), row.sent);
  const SweepTriggerSettings kept = row.kept.value_or(row.trigger);
  EXPECT_EQ(Fields(manager_.GetSweepTrigger()), Fields(kept));
  EXPECT_TRUE(ErrorRecords().empty());

  const bool software = kept.source == kSoftware;
  EXPECT_EQ(IsMeasuring(), Status::kOk == row.result && !software)
      << "the worker stays paused after -1";
  // The next operation ends and gives the worker back.
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  EXPECT_TRUE(software || WaitUntilRequested("6", 1));
}

constexpr SweepTriggerSettings kStep{kExternal, kSwitch, false, true};
constexpr SweepTriggerSettings kPoint{kExternal, kMeasure, false, true};
constexpr SweepTriggerSettings kLine{kSoftware, kSwitch, false, false};
constexpr SweepTriggerSettings kFreeStep{kImmediate, kSwitch, true, true};
constexpr SweepTriggerSettings kFree{kImmediate, kSwitch, false, false};
const std::vector<TriggerCase> kTriggerCases = {
    {"Immediate", {kImmediate, kMeasure, true, false}, {{7, 0, 1, 0, 0, 2}}, {}},
    {"External", {kExternal, kSwitch, false, false}, {{7, 1, 0, 0, 0, 2}}, {}},
    {"Step", {kExternal, kSwitch, true, true}, {{7, 2, 1, 0, 0, 2}}, {}},
    {"Measure", kPoint, {{7, 3, 0, 0, 0, 2}}, {}},
    {"SoftwareRunsFreely", kLine, {{7, 0, 0, 0, 0, 2}}, {}},
    {"AnswersFreeRun", kStep, {{7, 2, 0, 0, 0, 2}}, {0, 1, 0, 0, 2}, kFreeStep},
    {"AnswersSweep", kPoint, {{7, 3, 0, 0, 0, 2}}, {1, 0, 0, 0, 2}, {{kExternal, kMeasure}}},
    {"AnswersStep", kPoint, {{7, 3, 0, 0, 0, 2}}, {2, 0, 0, 0, 2}, kStep},
    {"AnswersPoint", kFree, {{7, 0, 0, 0, 0, 2}}, {3, 0, 0, 0, 2}, kPoint},
    {"AnswersLine", kFree, {{7, 0, 0, 0, 0, 2}}, {4, 0, 0, 0, 2}, kLine},
    {"NoSuchSource", {kUnknown, kMeasure, true, true}, {}, {}, kFree, -1},
    {"NoSuchAnswer", kPoint, {{7, 3, 0, 0, 0, 2}}, {5, 0, 0, 0, 2}, kFree, -1},
};
INSTANTIATE_TEST_SUITE_P(Sources, TriggerTest, testing::ValuesIn(kTriggerCases), RowName());

/// External power control, switched while the worker measures.
struct PowerControlCase : Row {
  bool enabled;
  std::vector<Values> sent;  // identifier and first line
  bool is_switching;         // afterwards
  TriggerSource source;
  Mode mode;
  ResultCode result = 0;
  std::uint8_t refused = 0;  // identifier; 0: the trigger's answer is an unknown one for result -1
  std::vector<int> trail = {};
};

class PowerControlTest : public ManagerTest,
                         public testing::WithParamInterface<PowerControlCase> {};

TEST_P(PowerControlTest, SwitchesTriggerAndOutput) {
  OpenAndMeasure();
  const PowerControlCase& row = GetParam();
  if (row.refused != 0) {
    visa_.Rule(kWrite, row.refused, kRefusal, 0, 1);
  } else if (Status::kOk != row.result) {
    visa_.RuleBody(kWrite, kTriggerInputId, Body(kTriggerInputId, 0x10, {5, 0, 1, 0, 3}));
  }
  EXPECT_EQ(manager_.SetExtPwrCtrl(row.enabled), row.result);
  EXPECT_EQ(Written(visa_, 0), row.sent);
  EXPECT_EQ(manager_.GetExtPwrCtrl(), row.is_switching);
  EXPECT_EQ(manager_.GetSweepTrigger().source, row.source);
  EXPECT_EQ(manager_.GetTriggerOutput().mode, row.mode);
  EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
  EXPECT_EQ(IsMeasuring(), row.source == kImmediate) << "the worker is resumed in any case";
}

const Values kInOn = {7, 4, 0, 1, 0, 3};
const Values kOutOn = {8, 6, 0, 1, 1, 0};
// clang-format off
const std::vector<PowerControlCase> kPowerControlCases = {
    {"On", true, {kInOn, kOutOn}, false, kSoftware, Mode::kSoftware},
    {"Off", false, {{7, 0, 0, 1, 0, 3}, {8, 0, 0, 1, 1, 0}}, false, kImmediate, Mode::kNone},
    {"UnknownAnswerToTheTrigger", true, {kInOn}, true, kImmediate, Mode::kSweep, -1},
    {"RefusedTrigger", true, {kInOn}, true, kImmediate, Mode::kSweep,
     kRefusalStatus, kTriggerInputId, {631}},
    {"RefusedOutput", true, {kInOn, kOutOn}, false, kSoftware, Mode::kSoftware,
     kRefusalStatus, kTriggerOutputId, {661}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Steps, PowerControlTest, testing::ValuesIn(kPowerControlCases), RowName());

TEST_F(ManagerTest, TriggerOutputWidthIsCutToMicroseconds) {
  const std::pair<double, double> rows[] = {
      {1.94, 1}, {1.96, 2}, {300.0, 255}, {-1.0, 0}, {std::nan(""), 0}};
  Open();
  for (const auto& [width, sent] : rows) {
    visa_.ClearRecord();
    EXPECT_EQ(manager_.SetTriggerOutput({.width = width, .enabled = true}), 0);
    EXPECT_EQ(manager_.GetTriggerOutput().width, sent);
    EXPECT_FALSE(manager_.GetTriggerOutput().inverse);
    EXPECT_EQ(Written(visa_, 0).front(), (Values{8, 1, 0, sent, 0, 0}));
  }
}

TriggerOutputSettings On(Mode mode) { return {.mode = mode, .enabled = true}; }
TriggerOutputSettings Off(Mode mode) { return {.mode = mode}; }

TEST_F(ManagerTest, SecondLineIsTheSyncGenerators) {
  struct Case {
    const char* name;
    TriggerOutputSettings before, after;
    std::optional<double> code;  // that the second line is given; none: it is left alone
  };
  const Case rows[] = {
      {"sync generator", Off(Mode::kSweep), On(Mode::kSyncGenerator), 5},
      {"sync generator, disabled", Off(Mode::kSweep), Off(Mode::kSyncGenerator), {}},
      {"back", On(Mode::kSyncGenerator), On(Mode::kSweep), 5},
      {"back and off", On(Mode::kSyncGenerator), Off(Mode::kSweep), 0},
      {"switched on", Off(Mode::kSweep), On(Mode::kSweep), 0},
      {"another mode", On(Mode::kSweep), On(Mode::kNextStep), {}},
  };
  Open();
  for (const Case& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(manager_.SetTriggerOutput(row.before), 0);
    visa_.ClearRecord();
    EXPECT_EQ(manager_.SetTriggerOutput(row.after), 0);
    std::vector<Values> second_line = Written(visa_, 1);
    second_line.erase(second_line.begin());  // the first line was written, which leaves this one
    std::vector<Values> sent;
    if (row.code) sent = {{7, *row.code, 0, 1, 1, 0}, {8, *row.code, 1, 1, 1, 0}};
    EXPECT_EQ(second_line, sent);
  }
}

/// In a session with mode kNextStep on.
TEST_F(ManagerTest, RefusedTriggerOutputReadsDisabled) {
  struct Case {
    Mode asked;
    std::uint8_t refused;
    std::int32_t times;
    ResultCode result;
    Mode mode;
    bool enabled;
    std::vector<int> trail;
  };
  constexpr auto kOut = kTriggerOutputId;
  const Case rows[] = {
      // Kept only once the second line is set, for a disabled output, too.
      {Mode::kSingleStep, kOut, 1, 0, Mode::kSingleStep, false, {661}},
      {Mode::kSingleStep, kOut, 2, kRefusalStatus, Mode::kNextStep, true, {661, 663}},
      {Mode::kSyncGenerator, kTriggerInputId, 1, kRefusalStatus, Mode::kNextStep, true, {662}},
  };
  for (const Case& row : rows) {
    Open();
    ASSERT_EQ(manager_.SetTriggerOutput(On(Mode::kNextStep)), 0);
    visa_.Rule(kWrite, row.refused, kRefusal, 0, row.times);
    EXPECT_EQ(manager_.SetTriggerOutput(On(row.asked)), row.result);
    EXPECT_EQ(manager_.GetTriggerOutput().mode, row.mode);
    EXPECT_EQ(manager_.GetTriggerOutput().enabled, row.enabled);
    EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
  }
}

}  // namespace
