// Trigger input and output: codes both ways, and the line of the sync generator.
#include "tests/manager/ManagerFixture.h"

namespace {

using enum TriggerAction;
using enum TriggerSource;
using Mode = TriggerOutputMode;

struct TriggerCase : Row {
  SweepTriggerSettings trigger;
  const char* sent;    // code, edge, value, flag, last; none: nothing is sent
  const char* answer;  // null: as sent
  ResultCode result;
  SweepTriggerSettings kept;
};

class TriggerTest : public ManagerTest, public testing::WithParamInterface<TriggerCase> {};

TEST_P(TriggerTest, MapsBothWays) {
  Open();
  StartMeasuring();
  const TriggerCase& row = GetParam();
  if (row.answer != nullptr) {
    visa_.RuleBody(kWrite, kTriggerInputId, 0,
                   "07 00 |" + std::string(row.answer) + Repeat(" 00", 5), 0, 1);
  }
  EXPECT_EQ(manager_.SetSweepTrigger(row.trigger), row.result);
  if (row.sent != nullptr) {
    EXPECT_THAT(Requests(), testing::Contains(WriteRequest(
                                10, 0x10, "07 00 |" + std::string(row.sent) + Repeat(" 00", 5))));
  } else {
    EXPECT_EQ(Requested("3:7/10x10"), 0U);
  }
  const SweepTriggerSettings kept = manager_.GetSweepTrigger();
  EXPECT_EQ(kept.source, row.kept.source);
  EXPECT_EQ(kept.action, row.kept.action);
  EXPECT_EQ(kept.falling_edge, row.kept.falling_edge);
  EXPECT_EQ(kept.single_step, row.kept.single_step);
  EXPECT_TRUE(ErrorRecords().empty());

  const bool software = row.kept.source == kSoftware;
  EXPECT_EQ(IsMeasuring(), Status::kOk == row.result && !software)
      << "the worker stays paused after -1";
  // The next operation ends and gives the worker back.
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  EXPECT_TRUE(software || WaitUntilRequested("6", 1));
}

// clang-format off
const std::vector<TriggerCase> kTriggerCases = {
    {"Immediate", {kImmediate, kMeasure, true, false}, "00 01 00 00 02", nullptr, 0, {kImmediate, kMeasure, true, false}},
    {"External", {kExternal, kSwitch, false, false}, "01 00 00 00 02", nullptr, 0, {kExternal, kSwitch, false, false}},
    {"Step", {kExternal, kSwitch, true, true}, "02 01 00 00 02", nullptr, 0, {kExternal, kSwitch, true, true}},
    {"Measure", {kExternal, kMeasure, false, true}, "03 00 00 00 02", nullptr, 0, {kExternal, kMeasure, false, true}},
    {"SoftwareRunsFreely", {kSoftware, kSwitch, false, false}, "00 00 00 00 02", nullptr, 0, {kSoftware, kSwitch, false, false}},
    {"AnswersFreeRun", {kExternal, kSwitch, false, true}, "02 00 00 00 02", "00 01 00 00 02", 0, {kImmediate, kSwitch, true, true}},
    {"AnswersSweep", {kExternal, kMeasure, false, true}, "03 00 00 00 02", "01 00 00 00 02", 0, {kExternal, kMeasure, false, false}},
    {"AnswersStep", {kExternal, kMeasure, false, true}, "03 00 00 00 02", "02 00 00 00 02", 0, {kExternal, kSwitch, false, true}},
    {"AnswersPoint", {kImmediate, kSwitch, false, false}, "00 00 00 00 02", "03 00 00 00 02", 0, {kExternal, kMeasure, false, true}},
    {"AnswersLine", {kImmediate, kSwitch, false, false}, "00 00 00 00 02", "04 00 00 00 02", 0, {kSoftware, kSwitch, false, false}},
    {"NoSuchSource", {kUnknown, kMeasure, true, true}, nullptr, nullptr, -1, {kImmediate, kSwitch, false, false}},
    {"NoSuchAnswer", {kExternal, kMeasure, true, true}, "03 01 00 00 02", "05 00 00 00 02", -1, {kImmediate, kSwitch, false, false}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Sources, TriggerTest, testing::ValuesIn(kTriggerCases), RowName());

/// External power control, switched while the worker measures; one parameter's next answer.
struct PowerControlCase : Row {
  bool enabled;
  std::uint8_t id;
  std::uint16_t status;
  const char* answer;  // null: as sent
  ResultCode result;
  std::vector<std::string> sent;  // identifier, code, edge, value, flag, last
  bool is_switching;              // afterwards
  TriggerSource source;
  Mode mode;
  std::vector<int> trail;
};

class PowerControlTest : public ManagerTest,
                         public testing::WithParamInterface<PowerControlCase> {};

TEST_P(PowerControlTest, SwitchesTriggerAndOutput) {
  Open();
  StartMeasuring();
  const PowerControlCase& row = GetParam();
  if (row.answer != nullptr) {
    visa_.RuleBody(kWrite, row.id, row.status, row.answer + Repeat(" 00", 5), 0, 1);
  }
  EXPECT_EQ(manager_.SetExtPwrCtrl(row.enabled), row.result);
  std::vector<std::string> sent;
  for (const std::string& request : Requests()) {
    if (request.starts_with("AA 55 03")) sent.push_back(request.substr(38, 20));
  }
  EXPECT_EQ(sent, row.sent);
  EXPECT_EQ(manager_.GetExtPwrCtrl(), row.is_switching);
  EXPECT_EQ(manager_.GetSweepTrigger().source, row.source);
  EXPECT_EQ(manager_.GetTriggerOutput().mode, row.mode);
  EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
  EXPECT_EQ(IsMeasuring(), row.source == kImmediate) << "the worker is resumed in any case";
}

constexpr auto kIn = kTriggerInputId;
constexpr auto kOut = kTriggerOutputId;
constexpr const char* kInOn = "07 00 04 00 01 00 03";
constexpr const char* kOutOn = "08 00 06 00 01 01 00";
// clang-format off
const std::vector<PowerControlCase> kPowerControlCases = {
    {"On", true, 0, 0, nullptr, 0, {kInOn, kOutOn}, false, kSoftware, Mode::kSoftware, {}},
    {"Off", false, 0, 0, nullptr, 0, {"07 00 00 00 01 00 03", "08 00 00 00 01 01 00"}, false, kImmediate, Mode::kNone, {}},
    {"UnknownAnswerToTheTrigger", true, kIn, 0, "07 00 05 00 01 00 03", -1, {kInOn}, true, kImmediate, Mode::kSweep, {}},
    {"RefusedTrigger", true, kIn, kRefusal, kInOn, kRefusalStatus, {kInOn}, true, kImmediate, Mode::kSweep, {631}},
    {"RefusedOutput", true, kOut, kRefusal, kOutOn, kRefusalStatus, {kInOn, kOutOn}, false, kSoftware, Mode::kSoftware, {661}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Steps, PowerControlTest, testing::ValuesIn(kPowerControlCases), RowName());

struct WidthCase {
  double microseconds;
  unsigned sent;
};
TEST_F(ManagerTest, TriggerOutputWidthIsCutToMicroseconds) {
  Open();
  for (const auto& [width, sent] : {WidthCase{1.94, 1}, WidthCase{1.96, 2}, WidthCase{300.0, 255},
                                    WidthCase{-1.0, 0}, WidthCase{std::nan(""), 0}}) {
    visa_.ClearRecord();
    EXPECT_EQ(manager_.SetTriggerOutput({.width = width, .enabled = true}), 0);
    EXPECT_EQ(manager_.GetTriggerOutput().width, sent);
    EXPECT_FALSE(manager_.GetTriggerOutput().inverse);
    EXPECT_THAT(
        Requests()[1],
        testing::HasSubstr("| 08 00 01 00 " + scripted::ToHex({{static_cast<std::uint8_t>(sent)}}) +
                           " 00 00"));
  }
}

/// Output settings before and after, and the code that the second line is given then.
struct RouteCase {
  const char* name;
  TriggerOutputSettings before;
  TriggerOutputSettings after;
  const char* code;  // null: the line is left alone
};
const std::array kRoutes{
    RouteCase{"SyncGenerator",
              {.mode = Mode::kSweep},
              {.mode = Mode::kSyncGenerator, .enabled = true},
              "05"},
    RouteCase{"SyncGeneratorOfADisabledOutput",
              {.mode = Mode::kSweep},
              {.mode = Mode::kSyncGenerator},
              nullptr},
    RouteCase{"Back",
              {.mode = Mode::kSyncGenerator, .enabled = true},
              {.mode = Mode::kSweep, .enabled = true},
              "05"},
    RouteCase{"BackAndOff",
              {.mode = Mode::kSyncGenerator, .enabled = true},
              {.mode = Mode::kSweep},
              "00"},
    RouteCase{"SwitchedOn", {.mode = Mode::kSweep}, {.mode = Mode::kSweep, .enabled = true}, "00"},
    RouteCase{"AnotherMode",
              {.mode = Mode::kSweep, .enabled = true},
              {.mode = Mode::kNextStep, .enabled = true},
              nullptr},
};

TEST_F(ManagerTest, SecondLineIsTheSyncGenerators) {
  Open();
  for (const RouteCase& row : kRoutes) {
    SCOPED_TRACE(row.name);
    ASSERT_EQ(manager_.SetTriggerOutput(row.before), 0);
    visa_.ClearRecord();
    EXPECT_EQ(manager_.SetTriggerOutput(row.after), 0);
    const auto requests = Requests();
    ASSERT_EQ(requests.size(), row.code == nullptr ? 2U : 6U) << "reads and writes";
    if (row.code == nullptr) continue;
    EXPECT_THAT(requests[3], testing::EndsWith(row.code + std::string(" 00 01 01 00")));
    EXPECT_THAT(requests[5], testing::EndsWith(row.code + std::string(" 01 01 01 00")));
  }
}

/// The trigger output of a session with mode 2 on, refused: what is returned, kept and recorded.
struct OutputRefusal {
  Mode asked;
  std::uint8_t id;
  std::int32_t times;
  ResultCode result;
  Mode mode;
  bool enabled;
  std::vector<int> trail;
};
// clang-format off
const std::array kOutputRefusals{
    // Kept only once the second line is set, for a disabled output, too.
    OutputRefusal{Mode::kSingleStep, kTriggerOutputId, 1, 0, Mode::kSingleStep, false, {661}},
    OutputRefusal{Mode::kSingleStep, kTriggerOutputId, 2, kRefusalStatus, Mode::kNextStep, true, {661, 663}},
    OutputRefusal{Mode::kSyncGenerator, kTriggerInputId, 1, kRefusalStatus, Mode::kNextStep, true, {662}},
};
// clang-format on

TEST_F(ManagerTest, RefusedTriggerOutputReadsDisabled) {
  for (const OutputRefusal& row : kOutputRefusals) {
    Open();
    ASSERT_EQ(manager_.SetTriggerOutput({.mode = Mode::kNextStep, .enabled = true}), 0);
    visa_.Rule(kWrite, row.id, kRefusal, 0, row.times);
    EXPECT_EQ(manager_.SetTriggerOutput({.mode = row.asked, .enabled = true}), row.result);
    EXPECT_EQ(manager_.GetTriggerOutput().mode, row.mode);
    EXPECT_EQ(manager_.GetTriggerOutput().enabled, row.enabled);
    EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
  }
}

}  // namespace
