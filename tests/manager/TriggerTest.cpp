// Trigger input and output: codes both ways, and the line of the sync generator.
#include "tests/manager/ManagerFixture.h"

namespace {

struct TriggerCase : Row {
  SweepTriggerSettings trigger;
  bool single_step;
  const char* sent;    // code, edge, value, flag, last; none: nothing is sent
  const char* answer;  // null: as sent
  Status result;
  SweepTriggerSettings kept;
  bool kept_step;
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
  SweepTriggerSettings trigger = row.trigger;
  EXPECT_EQ(manager_.SetSweepTrigger(trigger, row.single_step), row.result);
  if (row.sent != nullptr) {
    EXPECT_THAT(Requests(), testing::Contains(WriteRequest(
                                10, 0x10, "07 00 |" + std::string(row.sent) + Repeat(" 00", 5))));
  } else {
    EXPECT_EQ(Requested("3:7/10x10"), 0U);
  }
  SweepTriggerSettings kept;
  bool step = false;
  EXPECT_EQ(manager_.GetSweepTrigger(kept, step), 0);
  EXPECT_EQ(kept.source, row.kept.source);
  EXPECT_EQ(kept.action, row.kept.action);
  EXPECT_EQ(kept.sync_detection, row.kept.sync_detection);
  EXPECT_EQ(step, row.kept_step);
  EXPECT_TRUE(ErrorRecords().empty());

  const bool software = row.kept.source == static_cast<std::uint32_t>(TriggerSource::kSoftware);
  EXPECT_EQ(IsMeasuring(), row.result == 0 && !software) << "the worker stays paused after -1";
  // The next operation ends and gives the worker back.
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  EXPECT_TRUE(software || WaitUntilRequested("6", 1));
}

// clang-format off
const std::vector<TriggerCase> kTriggerCases = {
    {"Immediate", {0, 1, 1}, false, "00 01 00 00 02", nullptr, 0, {0, 1, 1}, false},
    {"External", {1, 0, 0}, false, "01 00 00 00 02", nullptr, 0, {1, 0, 0}, false},
    {"Step", {1, 0, 1}, true, "02 01 00 00 02", nullptr, 0, {1, 0, 1}, true},
    {"Measure", {1, 1, 0}, true, "03 00 00 00 02", nullptr, 0, {1, 1, 0}, true},
    {"SoftwareRunsFreely", {2, 0, 0}, false, "00 00 00 00 02", nullptr, 0, {2, 0, 0}, false},
    {"AnswersFreeRun", {1, 0, 0}, true, "02 00 00 00 02", "00 01 00 00 02", 0, {0, 0, 1}, true},
    {"AnswersSweep", {1, 1, 0}, true, "03 00 00 00 02", "01 00 00 00 02", 0, {1, 1, 0}, false},
    {"AnswersStep", {1, 1, 0}, true, "03 00 00 00 02", "02 00 00 00 02", 0, {1, 0, 0}, true},
    {"AnswersPoint", {0, 0, 0}, false, "00 00 00 00 02", "03 00 00 00 02", 0, {1, 1, 0}, true},
    {"AnswersLine", {0, 0, 0}, false, "00 00 00 00 02", "04 00 00 00 02", 0, {2, 0, 0}, false},
    {"NoSuchSource", {3, 1, 1}, true, nullptr, nullptr, -1, {0, 0, 0}, false},
    {"NoSuchAnswer", {1, 1, 1}, true, "03 01 00 00 02", "05 00 00 00 02", -1, {0, 0, 0}, false},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Sources, TriggerTest, testing::ValuesIn(kTriggerCases), RowName());

/// External power control, switched while the worker measures; one parameter's next answer.
struct PowerControlCase : Row {
  bool enabled;
  std::uint8_t id;
  std::uint16_t status;
  const char* answer;  // null: as sent
  Status result;
  std::vector<std::string> sent;  // identifier, code, edge, value, flag, last
  bool is_switching;              // afterwards
  std::uint32_t source;
  std::uint32_t mode;
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
  bool switching = !row.is_switching;
  EXPECT_EQ(manager_.GetExtPwrCtrl(switching), 0);
  EXPECT_EQ(switching, row.is_switching);
  SweepTriggerSettings trigger;
  bool step = false;
  EXPECT_EQ(manager_.GetSweepTrigger(trigger, step), 0);
  EXPECT_EQ(trigger.source, row.source);
  EXPECT_EQ(manager_.GetTriggerOutput().mode, row.mode);
  EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
  EXPECT_EQ(IsMeasuring(), row.source == 0) << "the worker is resumed in any case";
}

constexpr auto kIn = kTriggerInputId;
constexpr auto kOut = kTriggerOutputId;
constexpr const char* kInOn = "07 00 04 00 01 00 03";
constexpr const char* kOutOn = "08 00 06 00 01 01 00";
// clang-format off
const std::vector<PowerControlCase> kPowerControlCases = {
    {"On", true, 0, 0, nullptr, 0, {kInOn, kOutOn}, false, 2, 6, {}},
    {"Off", false, 0, 0, nullptr, 0, {"07 00 00 00 01 00 03", "08 00 00 00 01 01 00"}, false, 0, 0, {}},
    {"UnknownAnswerToTheTrigger", true, kIn, 0, "07 00 05 00 01 00 03", -1, {kInOn}, true, 0, 1, {}},
    {"RefusedTrigger", true, kIn, kRefusal, kInOn, kRefusalStatus, {kInOn}, true, 0, 1, {631}},
    {"RefusedOutput", true, kOut, kRefusal, kOutOn, kRefusalStatus, {kInOn, kOutOn}, false, 2, 6, {661}},
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
    TriggerOutputSettings settings{.mode = 1, .width = width, .enabled = 1};
    EXPECT_EQ(manager_.SetTriggerOutput(settings), 0);
    EXPECT_EQ(settings.width, sent);
    EXPECT_EQ(settings.polarity, 0U);
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
    RouteCase{"SyncGenerator", {.mode = 1}, {.mode = 5, .enabled = 1}, "05"},
    RouteCase{"SyncGeneratorOfADisabledOutput", {.mode = 1}, {.mode = 5}, nullptr},
    RouteCase{"Back", {.mode = 5, .enabled = 1}, {.mode = 1, .enabled = 1}, "05"},
    RouteCase{"BackAndOff", {.mode = 5, .enabled = 1}, {.mode = 1}, "00"},
    RouteCase{"SwitchedOn", {.mode = 1}, {.mode = 1, .enabled = 1}, "00"},
    RouteCase{"AnotherMode", {.mode = 1, .enabled = 1}, {.mode = 2, .enabled = 1}, nullptr},
};

TEST_F(ManagerTest, SecondLineIsTheSyncGenerators) {
  Open();
  for (RouteCase row : kRoutes) {
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
  std::uint32_t asked;
  std::uint8_t id;
  std::int32_t times;
  Status result;
  std::uint32_t mode;
  std::uint8_t enabled;
  std::vector<int> trail;
};
// clang-format off
const std::array kOutputRefusals{
    // Kept only once the second line is set, for a disabled output, too.
    OutputRefusal{3, kTriggerOutputId, 1, 0, 3, 0, {661}},
    OutputRefusal{3, kTriggerOutputId, 2, kRefusalStatus, 2, 1, {661, 663}},
    OutputRefusal{5, kTriggerInputId, 1, kRefusalStatus, 2, 1, {662}},
};
// clang-format on

TEST_F(ManagerTest, RefusedTriggerOutputReadsDisabled) {
  for (const OutputRefusal& row : kOutputRefusals) {
    Open();
    TriggerOutputSettings settings{.mode = 2, .enabled = 1};
    ASSERT_EQ(manager_.SetTriggerOutput(settings), 0);
    visa_.Rule(kWrite, row.id, kRefusal, 0, row.times);
    settings = {.mode = row.asked, .enabled = 1};
    EXPECT_EQ(manager_.SetTriggerOutput(settings), row.result);
    EXPECT_EQ(manager_.GetTriggerOutput().mode, row.mode);
    EXPECT_EQ(manager_.GetTriggerOutput().enabled, row.enabled);
    EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
  }
}

}  // namespace
