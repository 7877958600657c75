// The settings: what goes on the wire, what is kept, and what a refusal leaves behind.
#include "tests/manager/ManagerFixture.h"

namespace {

using scripted::Function;
using testing::ElementsAre;
using testing::ElementsAreArray;

/// One setting, its parameter's identifier, and how it ends.
struct SettingCase {
  const char* name;
  std::uint8_t id;
  std::function<Status(CK4NManager&)> set;
  std::function<double(CK4NManager&)> get;
  std::string request;      // the write
  std::string answer;       // what the instrument makes of it
  double corrected;         // what `get` gives then
  double refused;           // what `get` gives after a refusal
  std::vector<Site> trail;  // of a refusal
};
void PrintTo(const SettingCase& row, std::ostream* stream) { *stream << row.name; }

class SettingTest : public ManagerTest, public testing::WithParamInterface<SettingCase> {};

TEST_P(SettingTest, SendsAndKeepsTheCorrection) {
  Open();
  visa_.RuleBody(kWrite, GetParam().id, 0, GetParam().answer);
  EXPECT_EQ(GetParam().set(manager_), 0);
  EXPECT_THAT(Requests(), testing::Contains(GetParam().request));
  EXPECT_EQ(GetParam().get(manager_), GetParam().corrected);
  EXPECT_TRUE(manager_.ErrorRecords().empty());
}

TEST_P(SettingTest, RefusalIsReturnedAndGoesIntoTheTrail) {
  Open();
  visa_.Rule(kWrite, GetParam().id, kRefusal);
  EXPECT_EQ(GetParam().set(manager_), kRefusalStatus);
  std::vector<ErrorRecord> trail;
  for (const Site site : GetParam().trail) trail.push_back({kRefusalStatus, site});
  EXPECT_THAT(manager_.ErrorRecords(), ElementsAreArray(trail));
  EXPECT_EQ(GetParam().get(manager_), GetParam().refused);
}

TEST_P(SettingTest, WithoutSessionNothingHappens) {
  EXPECT_EQ(GetParam().set(manager_), status::kNoSession);
  EXPECT_TRUE(visa_.Requests().empty());
  EXPECT_TRUE(manager_.ErrorRecords().empty());
}

/// The worker is paused, the refused or accepted setting sent, and the worker resumed.
TEST_P(SettingTest, ComesBetweenTwoReads) {
  for (const std::uint16_t answer : {std::uint16_t{0}, kRefusal}) {
    Open();
    StartMeasuring();
    visa_.Rule(kWrite, GetParam().id, answer);
    GetParam().set(manager_);
    EXPECT_TRUE(WaitUntilRequested("6", 1)) << "answer " << answer;
    EXPECT_EQ(visa_.RequestOrder().front(), "1") << "the read in progress is given up first";
    visa_.RuleBody(kWrite, kFrequencyId, 0, kLimits, 0x60, 1);
    while (!manager_.ErrorRecords().empty()) {
      std::int32_t code = 0;
      std::optional<std::string> text;
      manager_.ErrorQuery(code, text);
    }
  }
}

template <typename... Out>
auto Get(Status (CK4NManager::*getter)(Out&...) const, auto pick) {
  return [getter, pick](CK4NManager& manager) {
    std::tuple<Out...> values{};
    const Status result =
        std::apply([&](Out&... out) { return (manager.*getter)(out...); }, values);
    return result == 0 ? static_cast<double>(pick(values)) : std::nan("");
  };
}
constexpr auto kFirst = [](const auto& values) { return std::get<0>(values); };
constexpr auto kLast = [](const auto& values) {
  return std::get<std::tuple_size_v<std::decay_t<decltype(values)>> - 1>(values);
};

SettingCase Setting(const char* name, std::uint8_t id, std::function<Status(CK4NManager&)> set,
                    std::function<double(CK4NManager&)> get, std::string request,
                    std::string answer, double corrected, double refused, std::vector<Site> trail) {
  return {
      name,      id,      std::move(set),  std::move(get), std::move(request), std::move(answer),
      corrected, refused, std::move(trail)};
}

double OutputOn(CK4NManager& manager) {
  bool on = false;
  EXPECT_EQ(manager.GetOutputEnabled(on), 0);
  return on ? 1.0 : 0.0;
}
Status FrequencyStep(CK4NManager& manager) {
  double start = 1e9;
  double stop = 2e9;
  double step = 5e8;
  return manager.SetFrequencyStep(start, stop, step);
}
Status PowerStep(CK4NManager& manager) {
  double start = -10.0;
  double stop = -8.0;
  double step = 0.5;
  return manager.SetPowerStep(start, stop, step);
}
SyncGeneratorSettings Sync() { return {.width = 10.0, .period = 30.0, .delay = 5.0}; }

INSTANTIATE_TEST_SUITE_P(
    Settings, SettingTest,
    testing::Values(
        Setting("Frequency", kFrequencyId, [](auto& m) { return m.SetFrequency(1e9); },
                Get(&CK4NManager::GetFrequency, kFirst),
                WriteRequest(1, 0x60, "00 00 | 00 CA 9A 3B 00 00"), "00 00 | 01 CA 9A 3B 00 00",
                1e9 + 1, 1e9, {Site::kFrequencyAxis, Site::kCwFrequency}),
        Setting("Level", kPowerId, [](auto& m) { return m.SetLevel(-30.0); },
                Get(&CK4NManager::GetLevel, kFirst), PowerRequest(1, "00 00 E2 FF FF FF"),
                PowerBody(1, "00 80 E2 FF FF FF"), -29.5, -30.0,
                {Site::kPowerAxis, Site::kCwLevel}),
        Setting("OutputOff", kPowerId, [](auto& m) { return m.SetOutputEnabled(false); }, OutputOn,
                PowerRequest(0, kMinus20), PowerBody(0, kMinus20), 0.0, 0.0,
                {Site::kOutputEnabled}),
        Setting("OutputOn", kPowerId, [](auto& m) { return m.SetOutputEnabled(true); }, OutputOn,
                PowerRequest(1, kMinus20), PowerBody(2, kMinus20), 0.0, 1.0,
                {Site::kPowerAxis, Site::kOutputEnabled}),
        Setting("AttenMode", kPowerId, [](auto& m) { return m.SetAttenMode(5); },
                Get(&CK4NManager::GetAttenMode, kFirst), PowerRequest(1, kMinus20, 5),
                PowerBody(1, kMinus20, 4), 4.0, 5.0, {Site::kPowerAxis, Site::kAttenMode}),
        Setting("FrequencyStep", kFrequencyId, FrequencyStep,
                Get(&CK4NManager::GetFrequencyStep, kFirst),
                WriteRequest(4, 0x60,
                             "00 00 | 00 CA 9A 3B 00 00 | 03 00 00 00 00 00 |"
                             "00 65 CD 1D 00 00 | 00 94 35 77 00 00"),
                "00 00 | 01 CA 9A 3B 00 00 | 03 00 00 00 00 00 | 00 65 CD 1D 00 00 |"
                "02 94 35 77 00 00",
                1e9 + 1, 1e9, {Site::kFrequencyAxis, Site::kFrequencyAxis, Site::kFrequencyStep}),
        Setting("PowerStep", kPowerId, PowerStep, Get(&CK4NManager::GetPowerStep, kFirst),
                WriteRequest(8, 0x62,
                             PowerBody(0, "00 00 F6 FF FF FF") +
                                 "| 00 00 05 00 00 00 | 00 80 00 00 00 00 | 00 00 F8 FF FF FF"),
                PowerBody(1, "00 00 F7 FF FF FF") +
                    "| 00 00 05 00 00 00 | 00 80 00 00 00 00 | 00 00 F8 FF FF FF",
                -9.0, -10.0, {Site::kPowerAxis, Site::kPowerAxis, Site::kPowerStep}),
        Setting("Dwell", kDwellId, [](auto& m) { return m.SetDwell(1e6); },
                Get(&CK4NManager::GetDwell, kFirst),
                WriteRequest(2, 0x40, "05 00 | 00 00 00 00 | 40 42 0F 00"),
                "05 00 | 00 00 00 00 | 41 42 0F 00", 1e6 + 1, 0.0, {Site::kDwell}),
        Setting("Averaging", 4, [](auto& m) { return m.SetAveraging(99); },
                Get(&CK4NManager::GetAveraging, kFirst), WriteRequest(1, 0x10, "04 00 0E 00"),
                "04 00 0D", 13.0, 99.0, {Site::kAveraging}),
        Setting("ExternalReference", 17, [](auto& m) { return m.SetExtRefGen(true, 5e6); },
                Get(&CK4NManager::GetExtRefGen, kLast),
                WriteRequest(2, 0x40, "11 00 | 01 00 00 00 | 40 4B 4C 00"),
                "11 00 | 01 00 00 00 | 80 96 98 00", 1e7, 5e6, {Site::kExtRefGen}),
        Setting("PhaseDelay", 92, [](auto& m) { return m.SetExtRefPhaseDelay(-7); },
                Get(&CK4NManager::GetExtRefPhaseDelay, kFirst),
                WriteRequest(1, 0x42, "5C 00 | 00 00 F9 FF"), "5C 00 | 00 80 F9 FF", -7.0, 0.0,
                {Site::kExtRefPhaseDelay}),
        Setting("Compensation", 11, [](auto& m) { return m.SetCompensMode(9); },
                Get(&CK4NManager::GetCompensMode, kFirst), WriteRequest(1, 0x20, "0B 00 09 00"),
                "0B 00 04 00", 4.0, 9.0, {Site::kCompensMode}),
        Setting("SyncGenerator", 37,
                [](auto& m) {
                  auto sync = Sync();
                  return m.SetSyncGenerator(sync);
                },
                Get(&CK4NManager::GetSyncGenerator,
                    [](const auto& values) { return std::get<0>(values).period; }),
                WriteRequest(3, 0x40, "25 00 | 0A 00 00 00 | 14 00 00 00 | 05 00 00 00"),
                "25 00 | 0C 00 00 00 | 14 00 00 00 | 05 00 00 00", 32.0, 30.0,
                {Site::kSyncGenerator})),
    [](const auto& row) { return row.param.name; });

TEST_F(ManagerTest, ArgumentsComeBackAsTheInstrumentSetThem) {
  Open();
  visa_.RuleBody(kWrite, kFrequencyId, 0,
                 "00 00 | 01 CA 9A 3B 00 00 | 03 00 00 00 00 00 | 02 65 CD 1D 00 00 |"
                 "03 94 35 77 00 00",
                 0, 1);
  double start = 1e9;
  double stop = 2e9;
  double step = 5e8;
  EXPECT_EQ(manager_.SetFrequencyStep(start, stop, step), 0);
  EXPECT_EQ(start, 1e9 + 1);
  EXPECT_EQ(step, 5e8 + 2);
  EXPECT_EQ(stop, 2e9 + 3);
  auto sync = Sync();
  sync.period = 4.0;
  EXPECT_EQ(manager_.SetSyncGenerator(sync), 0);
  EXPECT_EQ(sync.period, sync.width) << "no room between the pulses";
}

// --- Axes

/// What a setting puts on the two axes in each mode.
struct AxisCase {
  const char* name;
  SweepMode mode;
  Output output;
  Status (*set)(CK4NManager& manager);
  std::vector<const char*> order;  // a power write with the output switch that it carries
};
void PrintTo(const AxisCase& row, std::ostream* stream) { *stream << row.name; }

class AxisTest : public ManagerTest, public testing::WithParamInterface<AxisCase> {};

TEST_P(AxisTest, TriesTheRequestThenProgramsTheMode) {
  Open(GetParam().output);
  ASSERT_EQ(manager_.SetSweepMode(GetParam().mode), 0);
  visa_.ClearRecord();
  EXPECT_EQ(GetParam().set(manager_), 0);
  std::vector<std::string> order = visa_.RequestOrder();
  const auto requests = Requests();
  for (std::size_t i = 0; i < order.size(); ++i) {
    const bool is_power = order[i].starts_with("3:79/") || order[i].starts_with("3:76/");
    if (is_power) order[i] += requests[i].substr(50, 2) == "01" ? " on" : " off";
  }
  EXPECT_THAT(order, ElementsAreArray(GetParam().order));
}

Status Frequency(CK4NManager& manager) { return manager.SetFrequency(1e9); }
Status Level(CK4NManager& manager) { return manager.SetLevel(-20.0); }
constexpr auto kCw = SweepMode::kContinuousWave;
constexpr auto kPower = SweepMode::kPowerStep;
constexpr auto kStep = SweepMode::kFrequencyStep;
constexpr auto kList = SweepMode::kList;

INSTANTIATE_TEST_SUITE_P(
    Axes, AxisTest,
    testing::Values(
        AxisCase{"FrequencyInCw", kCw, Output::kOn, Frequency, {"3:0/60x1"}},
        AxisCase{"FrequencyInPowerStep", kPower, Output::kOn, Frequency, {"3:0/60x1"}},
        AxisCase{
            "FrequencyInFrequencyStep", kStep, Output::kOn, Frequency, {"3:0/60x1", "3:0/60x4"}},
        AxisCase{"FrequencyInList", kList, Output::kOn, Frequency, {"3:0/60x1", "3:2/60x0"}},
        AxisCase{"LevelInCw", kCw, Output::kOff, Level, {"3:79/62x5 off"}},
        AxisCase{"LevelInFrequencyStep", kStep, Output::kOn, Level, {"3:79/62x5 on"}},
        AxisCase{"LevelInPowerStep", kPower, Output::kOn, Level, {"3:79/62x5 off", "3:79/62x8 on"}},
        AxisCase{"LevelInPowerStepOutputOff", kPower, Output::kOff, Level, {"3:79/62x5 off"}},
        AxisCase{"LevelInList", kList, Output::kOn, Level, {"3:79/62x5 off", "3:76/42x4 on"}},
        AxisCase{"FrequencyStepInCw", kCw, Output::kOn, FrequencyStep, {"3:0/60x4", "3:0/60x1"}},
        AxisCase{"FrequencyStepInItsMode", kStep, Output::kOn, FrequencyStep, {"3:0/60x4"}},
        AxisCase{"FrequencyStepInPowerStep",
                 kPower,
                 Output::kOn,
                 FrequencyStep,
                 {"3:0/60x4", "3:0/60x1", "3:79/62x8 on"}},
        AxisCase{"PowerStepInCwOutputOff", kCw, Output::kOff, PowerStep, {"3:79/62x8 off"}},
        AxisCase{"PowerStepInCw", kCw, Output::kOn, PowerStep, {"3:79/62x8 off", "3:79/62x5 on"}},
        AxisCase{"PowerStepInItsModeOutputOff", kPower, Output::kOff, PowerStep, {"3:79/62x8 off"}},
        AxisCase{"PowerStepInFrequencyStep",
                 kStep,
                 Output::kOn,
                 PowerStep,
                 {"3:79/62x8 off", "3:79/62x5 on", "3:0/60x4"}},
        AxisCase{"OutputOffInPowerStep",
                 kPower,
                 Output::kOn,
                 [](CK4NManager& m) { return m.SetOutputEnabled(false); },
                 {"3:79/62x5 off"}},
        AxisCase{"OutputOnInPowerStep",
                 kPower,
                 Output::kOff,
                 [](CK4NManager& m) { return m.SetOutputEnabled(true); },
                 {"3:79/62x8 on"}},
        AxisCase{"ModeList",
                 kCw,
                 Output::kOn,
                 [](CK4NManager& m) { return m.SetSweepMode(kList); },
                 {"3:76/42x4 on", "3:2/60x0", "4:7/10x10", "3:7/10x10"}}),
    [](const auto& row) { return row.param.name; });

TEST_F(ManagerTest, ListModeRunsOnStandInsWithoutLists) {
  Open();
  ASSERT_EQ(manager_.SetSweepMode(SweepMode::kList), 0);
  EXPECT_THAT(Requests(),
              testing::IsSupersetOf(
                  {WriteRequest(0, 0x60,
                                "02 00 | 00 00 00 00 00 00 | 01 00 00 00 00 00 |"
                                "80 96 98 00 00 00"),
                   WriteRequest(4, 0x42,
                                "4C 00 | 00 00 01 00 | 00 00 03 00 | 00 00 00 00 |"
                                "00 00 00 00 | 00 00 00 00 | 00 00 01 00 | 00 00 C4 FF")}));
}

struct ModeFailureCase {
  const char* name;
  std::uint8_t refused;  // identifier
  std::vector<const char*> order;
  std::vector<Site> trail;
};
class ModeFailureTest : public ManagerTest, public testing::WithParamInterface<ModeFailureCase> {};

TEST_P(ModeFailureTest, RestoresTheMode) {
  Open();
  visa_.Rule(kWrite, GetParam().refused, kRefusal, 0, 1);
  EXPECT_EQ(manager_.SetSweepMode(SweepMode::kList), kRefusalStatus);
  EXPECT_THAT(visa_.RequestOrder(), ElementsAreArray(GetParam().order));
  SweepMode mode{};
  EXPECT_EQ(manager_.GetSweepMode(mode), 0);
  EXPECT_EQ(mode, SweepMode::kContinuousWave);
  std::vector<ErrorRecord> trail;
  for (const Site site : GetParam().trail) trail.push_back({kRefusalStatus, site});
  EXPECT_THAT(manager_.ErrorRecords(), ElementsAreArray(trail));
}

INSTANTIATE_TEST_SUITE_P(
    Axes, ModeFailureTest,
    testing::Values(ModeFailureCase{"Power", 76, {"3:76/42x4", "1"}, {Site::kPowerAxis}},
                    ModeFailureCase{"Frequency",
                                    2,
                                    {"3:76/42x4", "3:2/60x0", "1", "3:79/62x5"},
                                    {Site::kFrequencyAxis}}),
    [](const auto& row) { return row.param.name; });

// --- Trigger

struct TriggerCase {
  const char* name;
  SweepTriggerSettings trigger;
  bool single_step;
  const char* sent;    // code, edge, value, flag, last; none: nothing is sent
  const char* answer;  // null: as sent
  Status result;
  SweepTriggerSettings kept;
  bool kept_step;
};
void PrintTo(const TriggerCase& row, std::ostream* stream) { *stream << row.name; }

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
  EXPECT_TRUE(manager_.ErrorRecords().empty());

  if (row.result == status::kRefused) {
    EXPECT_EQ(Requested("6"), 0U) << "the worker stays paused";
  }
  // The next operation ends and gives the worker back.
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  const bool software = row.kept.source == static_cast<std::uint32_t>(TriggerSource::kSoftware);
  EXPECT_TRUE(software || WaitUntilRequested("6", 1));
}

INSTANTIATE_TEST_SUITE_P(
    Sources, TriggerTest,
    testing::Values(
        TriggerCase{"Immediate", {0, 1, 1}, false, "00 01 00 00 02", nullptr, 0, {0, 1, 1}, false},
        TriggerCase{"External", {1, 0, 0}, false, "01 00 00 00 02", nullptr, 0, {1, 0, 0}, false},
        TriggerCase{"Step", {1, 0, 1}, true, "02 01 00 00 02", nullptr, 0, {1, 0, 1}, true},
        TriggerCase{"Measure", {1, 1, 0}, true, "03 00 00 00 02", nullptr, 0, {1, 1, 0}, true},
        TriggerCase{
            "SoftwareRunsFreely", {2, 0, 0}, false, "00 00 00 00 02", nullptr, 0, {2, 0, 0}, false},
        TriggerCase{"InstrumentAnswersFreeRun",
                    {1, 0, 0},
                    true,
                    "02 00 00 00 02",
                    "00 01 00 00 02",
                    0,
                    {0, 0, 1},
                    true},
        TriggerCase{"InstrumentAnswersWholeSweep",
                    {1, 1, 0},
                    true,
                    "03 00 00 00 02",
                    "01 00 00 00 02",
                    0,
                    {1, 1, 0},
                    false},
        TriggerCase{"InstrumentAnswersStep",
                    {1, 1, 0},
                    true,
                    "03 00 00 00 02",
                    "02 00 00 00 02",
                    0,
                    {1, 0, 0},
                    true},
        TriggerCase{"InstrumentAnswersMeasure",
                    {0, 0, 0},
                    false,
                    "00 00 00 00 02",
                    "03 00 00 00 02",
                    0,
                    {1, 1, 0},
                    true},
        TriggerCase{"InstrumentAnswersTriggerLine",
                    {0, 0, 0},
                    false,
                    "00 00 00 00 02",
                    "04 00 00 00 02",
                    0,
                    {2, 0, 0},
                    false},
        TriggerCase{"NoSuchSource", {3, 1, 1}, true, nullptr, nullptr, -1, {0, 0, 0}, false},
        TriggerCase{"NoSuchAnswer",
                    {1, 1, 1},
                    true,
                    "03 01 00 00 02",
                    "05 00 00 00 02",
                    -1,
                    {0, 0, 0},
                    false}),
    [](const auto& row) { return row.param.name; });

TEST_F(ManagerTest, RefusedTriggerKeepsTheOldOne) {
  Open();
  visa_.Rule(kWrite, kTriggerInputId, kRefusal);
  SweepTriggerSettings trigger{1, 1, 1};
  EXPECT_EQ(manager_.SetSweepTrigger(trigger, true), kRefusalStatus);
  SweepTriggerSettings kept;
  bool step = true;
  manager_.GetSweepTrigger(kept, step);
  EXPECT_EQ(kept.source, 2U);
  EXPECT_FALSE(step);
  EXPECT_THAT(manager_.ErrorRecords(),
              ElementsAre(ErrorRecord{kRefusalStatus, Site::kSweepTrigger}));
}

TEST_F(ManagerTest, ExternalPowerControlSwitchesTriggerAndOutput) {
  Open();
  EXPECT_EQ(manager_.SetExtPwrCtrl(true), 0);
  EXPECT_THAT(visa_.RequestOrder(),
              ElementsAre("4:7/10x10", "3:7/10x10", "4:8/10x10", "3:8/10x10"));
  EXPECT_THAT(Requests()[1], testing::HasSubstr("| 07 00 04 00 01 00 03"));
  EXPECT_THAT(Requests()[3], testing::HasSubstr("| 08 00 06 00 01 01 00"));
  bool switching = true;
  manager_.GetExtPwrCtrl(switching);
  EXPECT_FALSE(switching);
  visa_.Rule(kWrite, kTriggerInputId, kRefusal);
  EXPECT_EQ(manager_.SetExtPwrCtrl(false), kRefusalStatus);
  manager_.GetExtPwrCtrl(switching);
  EXPECT_TRUE(switching) << "after a failed trigger step";
}

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
    EXPECT_THAT(
        Requests()[1],
        testing::HasSubstr("| 08 00 01 00 " + scripted::ToHex({{static_cast<std::uint8_t>(sent)}}) +
                           " 00 00"));
  }
}

// --- Error trail

struct QueryCase {
  const char* name;
  std::uint32_t visa_status;  // of the read that fails; 0: the instrument refuses
  std::int32_t code;
  const char* text;
};
class QueryTest : public ManagerTest, public testing::WithParamInterface<QueryCase> {};

TEST_P(QueryTest, TellsCodeAndText) {
  Open();
  if (GetParam().visa_status != 0) {
    visa_.SetResult(Function::kRead, GetParam().visa_status, 1);
  } else {
    visa_.Rule(kWrite, kDwellId, kRefusal);
  }
  EXPECT_EQ(manager_.SetDwell(1.0), GetParam().code);
  std::int32_t code = 1;
  std::optional<std::string> text;
  EXPECT_EQ(manager_.ErrorQuery(code, text), 0);
  EXPECT_EQ(code, GetParam().code);
  EXPECT_EQ(text, GetParam().text);
  EXPECT_EQ(manager_.ErrorQuery(code, text), 0);
  EXPECT_EQ(code, 0) << "the trail is empty";
  EXPECT_EQ(text, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Texts, QueryTest,
                         testing::Values(QueryCase{"InstrumentCode", 0, kRefusalStatus, "-32763"},
                                         QueryCase{"FirstVisaCode", 0xBFFF0000, status::kVisaFirst,
                                                   "text of BF FF 00 00"},
                                         QueryCase{"LastVisaCode", 0xBFFF00A8, status::kVisaLast,
                                                   "text of BF FF 00 A8"},
                                         QueryCase{"BehindTheLastVisaCodeDecimalInFull", 0xBFFF00A9,
                                                   status::FromBits(0xBFFF00A9), "-1073807191"},
                                         QueryCase{"BeforeTheFirst", 0xBFFEFFFF,
                                                   status::FromBits(0xBFFEFFFF), "-1073807361"}),
                         [](const auto& row) { return row.param.name; });

TEST_F(ManagerTest, ErrorsAreToldOldestFirstAlsoAfterTheSession) {
  Open();
  visa_.Rule(kWrite, kDwellId, kRefusal, 0, 1);
  manager_.SetDwell(1.0);
  visa_.SetResult(Function::kRead, 0xBFFF00A6, 1);
  manager_.SetDwell(1.0);
  EXPECT_EQ(manager_.ErrorRecords().front().Location(),
            "File: .\\K4NHardWare\\K4NManager Line: 632");
  manager_.Close();
  std::int32_t code = 0;
  std::optional<std::string> text;
  manager_.ErrorQuery(code, text);
  EXPECT_EQ(code, kRefusalStatus);
  manager_.ErrorQuery(code, text);
  EXPECT_EQ(code, status::FromBits(0xBFFF00A6));
  EXPECT_EQ(text, "-1073807194") << "nobody left to ask for a text";
}

}  // namespace
