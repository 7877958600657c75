// The settings: what goes on the wire, what is kept, and what a refusal leaves behind.
#include "tests/manager/ManagerFixture.h"

namespace {

using scripted::Function;
using testing::ElementsAreArray;
using testing::Pair;

using M = CK4NManager;

/// One setting, its parameter's identifier, and what the trail tells of a refusal.
struct SettingCase : Row {
  std::uint8_t id;
  Status (*set)(M&);
  std::vector<int> trail;
  bool discards = false;  // a block that nobody fetched
  SweepMode mode = SweepMode::kContinuousWave;
};

class SettingTest : public ManagerTest, public testing::WithParamInterface<SettingCase> {};

TEST_P(SettingTest, RefusalIsReturnedAndGoesIntoTheTrail) {
  Open();
  ASSERT_EQ(manager_.SetSweepMode(GetParam().mode), 0);
  visa_.Rule(kWrite, GetParam().id, kRefusal);
  EXPECT_EQ(GetParam().set(manager_), kRefusalStatus);
  EXPECT_EQ(ErrorRecords(), Refusals(GetParam().trail));
}

TEST_P(SettingTest, WithoutSessionNothingHappens) {
  EXPECT_EQ(GetParam().set(manager_), Status::kNoSession);
  EXPECT_TRUE(visa_.Requests().empty());
  EXPECT_TRUE(ErrorRecords().empty());
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
  }
}

TEST_P(SettingTest, DiscardsABlockOrNot) {
  for (const std::uint16_t answer : {std::uint16_t{0}, kRefusal}) {
    Open();
    StoreBlock(SweepMode::kList);
    visa_.Rule(kWrite, GetParam().id, answer);
    GetParam().set(manager_);
    EXPECT_EQ(manager_.FetchData(trace_), GetParam().discards ? Status::kVisaTimeout : Status::kOk)
        << answer;
  }
}

// clang-format off
const std::vector<SettingCase> kSettingCases = {
    {"Frequency", 0, [](M& m) { return m.SetFrequency(1e9); }, {601, 611}},
    {"Level", 79, [](M& m) { return m.SetLevel(-30.0); }, {602, 612}},
    {"OutputOff", 79, [](M& m) { return m.SetOutputEnabled(false); }, {613}},
    {"OutputOn", 79, [](M& m) { return m.SetOutputEnabled(true); }, {602, 613}},
    {"AttenMode", 79, [](M& m) { return m.SetAttenMode(AttenMode::kCare); }, {602, 691}},
    {"SweepMode", 79, [](M& m) { return m.SetSweepMode(SweepMode::kPowerStep); }, {602}, true},
    {"FrequencyStep", 0, SetFrequencyStep, {601, 601, 621}, true},
    {"FrequencyStepInPowerStep", 79, SetFrequencyStep, {602, 622}, true, SweepMode::kPowerStep},
    {"PowerStep", 79, SetPowerStep, {602, 602, 623}, true},
    {"PowerStepInFrequencyStep", 0, SetPowerStep, {601, 624}, true, SweepMode::kFrequencyStep},
    {"SweepTrigger", 7, TriggerImmediately, {631}, true},
    {"Dwell", 5, [](M& m) { return m.SetDwell(1e6); }, {632}},
    {"Averaging", 4, [](M& m) { return m.SetAveraging(9); }, {701}, true},
    {"ExternalReference", 17, [](M& m) { return m.SetExtRefGen({true, 5e6}); }, {692}},
    {"PhaseDelay", 92, [](M& m) { return m.SetExtRefPhaseDelay(-7); }, {693}},
    {"Compensation", 11, [](M& m) { return m.SetCompensMode(9); }, {694}},
    {"SyncGenerator", 37, SetSyncGenerator, {671}},
    {"Modulation", 31, [](M& m) { return m.SetPulseModEnabled(true); }, {651}, true},
    {"PolarityWhileOff", 31, [](M& m) { return m.SetPulseModPolarity(true); }, {652}, true},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Settings, SettingTest, testing::ValuesIn(kSettingCases), RowName());

TEST_F(ManagerTest, SettingsReadAsTheInstrumentSetThem) {
  Open();
  visa_.RuleBody(kWrite, kFrequencyId, 0,
                 "00 00 | 01 CA 9A 3B 00 00 | 03 00 00 00 00 00 | 02 65 CD 1D 00 00 |"
                 "03 94 35 77 00 00",
                 0, 1);
  EXPECT_EQ(SetFrequencyStep(manager_), 0);
  EXPECT_EQ(manager_.GetFrequencyStep().start, 1e9 + 1);
  EXPECT_EQ(manager_.GetFrequencyStep().step, 5e8 + 2);
  EXPECT_EQ(manager_.GetFrequencyStep().stop, 2e9 + 3);
  visa_.RuleBody(kWrite, kPowerId, 0, PowerBody(0, "00 00 D8 FF FF FF"));
  EXPECT_EQ(manager_.SetOutputEnabled(false), 0);
  EXPECT_EQ(manager_.GetLevel(), -40.0);
  EXPECT_EQ(SetSyncGenerator(manager_), 0);
  EXPECT_EQ(manager_.GetSyncGenerator().period, 30.0);
}

// --- Serial number

struct SerialCase {
  const char* name;
  std::uint16_t query;  // status of the query's answer
  const char* answer;   // its body
  std::uint16_t file;   // status of the file's answer
  ResultCode result;
  const char* text;
  std::vector<const char*> order;
};
constexpr const char* kSerialQuery = "4:83/20x1";
constexpr const char* kFileRead = "4:10/40x2";
const std::array kSerialCases{
    SerialCase{"Answered", 0, "53 00 00 00", 0, 0, "*", {kSerialQuery}},
    SerialCase{"WrongChecksum", 0, "53 00 01 00", 0, 0, "AB", {kSerialQuery, kFileRead}},
    SerialCase{"UnknownQuery", 0x8002, "", 0, 0, "AB", {kSerialQuery, kFileRead}},
    SerialCase{"NoFile", 0x8002, "", 0x8103, -32509, "", {kSerialQuery, kFileRead, "1"}},
    SerialCase{"Refused", kRefusal, "", 0, kRefusalStatus, "", {kSerialQuery, "1"}},
};

TEST_F(ManagerTest, SerialNumberIsAskedForThenReadFromItsFile) {
  Open();
  visa_.RuleBody(kRead, 10, 0, "0A" + Repeat(" 00", 9 + 17) + "41 42");
  for (const SerialCase& row : kSerialCases) {
    SCOPED_TRACE(row.name);
    visa_.ClearRecord();
    visa_.Answer(row.query, row.answer);
    if (row.file != 0) visa_.Answer(row.file);
    const StatusAnd<std::string> number = manager_.GetSerialNumber();
    EXPECT_EQ(number.status, row.result);
    EXPECT_EQ(number.value, row.text);
    EXPECT_THAT(visa_.RequestOrder(), ElementsAreArray(row.order));
  }
  visa_.ClearRecord();
  EXPECT_EQ(manager_.GetInstrumentType().status, 0);
  EXPECT_THAT(visa_.RequestOrder(), testing::ElementsAre(kFileRead));
}

// --- Axes

/// What a setting puts on the two axes in each mode.
struct AxisCase : Row {
  SweepMode mode;
  Output output;
  Status (*set)(CK4NManager& manager);
  std::vector<const char*> order;  // a power write with the output switch that it carries
};

class AxisTest : public ManagerTest, public testing::WithParamInterface<AxisCase> {};

TEST_P(AxisTest, TriesTheRequestThenProgramsTheMode) {
  Open(GetParam().output);
  EXPECT_EQ(manager_.GetOutputEnabled(), GetParam().output == Output::kOn);
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

// clang-format off
const std::vector<AxisCase> kAxisCases = {
    {"FrequencyInCw", kCw, Output::kOn, Frequency, {"3:0/60x1"}},
    {"FrequencyInPowerStep", kPower, Output::kOn, Frequency, {"3:0/60x1"}},
    {"FrequencyInFrequencyStep", kStep, Output::kOn, Frequency, {"3:0/60x1", "3:0/60x4"}},
    {"FrequencyInList", kList, Output::kOn, Frequency, {"3:0/60x1", "3:2/60x0"}},
    {"LevelInCw", kCw, Output::kOff, Level, {"3:79/62x5 off"}},
    {"LevelInFrequencyStep", kStep, Output::kOn, Level, {"3:79/62x5 on"}},
    {"LevelInPowerStep", kPower, Output::kOn, Level, {"3:79/62x5 off", "3:79/62x8 on"}},
    {"LevelInPowerStepOutputOff", kPower, Output::kOff, Level, {"3:79/62x5 off"}},
    {"LevelInPowerStepOutputNeither", kPower, Output::kNeither, Level, {"3:79/62x5 off"}},
    {"LevelInList", kList, Output::kOn, Level, {"3:79/62x5 off", "3:76/42x4 on"}},
    {"FrequencyStepInCw", kCw, Output::kOn, SetFrequencyStep, {"3:0/60x4", "3:0/60x1"}},
    {"FrequencyStepInItsMode", kStep, Output::kOn, SetFrequencyStep, {"3:0/60x4"}},
    {"FrequencyStepInPowerStep", kPower, Output::kOn, SetFrequencyStep, {"3:0/60x4", "3:0/60x1", "3:79/62x8 on"}},
    {"PowerStepInCwOutputOff", kCw, Output::kOff, SetPowerStep, {"3:79/62x8 off"}},
    {"PowerStepInCw", kCw, Output::kOn, SetPowerStep, {"3:79/62x8 off", "3:79/62x5 on"}},
    {"PowerStepInItsModeOutputOff", kPower, Output::kOff, SetPowerStep, {"3:79/62x8 off"}},
    {"PowerStepInFrequencyStep", kStep, Output::kOn, SetPowerStep, {"3:79/62x8 off", "3:79/62x5 on", "3:0/60x4"}},
    {"OutputOffInPowerStep", kPower, Output::kOn, [](M& m) { return m.SetOutputEnabled(false); }, {"3:79/62x5 off"}},
    {"OutputOnInPowerStep", kPower, Output::kOff, [](M& m) { return m.SetOutputEnabled(true); }, {"3:79/62x8 on"}},
    {"ModeList", kCw, Output::kOn, [](M& m) { return m.SetSweepMode(kList); }, {"3:76/42x4 on", "3:2/60x0", "4:7/10x10", "3:7/10x10"}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Axes, AxisTest, testing::ValuesIn(kAxisCases), RowName());

struct ModeFailureCase {
  std::uint8_t refused;  // identifier
  std::vector<const char*> order;
  std::vector<int> trail;
};
const std::array kModeFailureCases{
    ModeFailureCase{76, {"3:76/42x4", "1"}, {602}},
    ModeFailureCase{2, {"3:76/42x4", "3:2/60x0", "1", "3:79/62x5"}, {601}},
};

TEST_F(ManagerTest, RefusedModeIsRestored) {
  for (const ModeFailureCase& row : kModeFailureCases) {
    Open();
    visa_.Rule(kWrite, row.refused, kRefusal, 0, 1);
    EXPECT_EQ(manager_.SetSweepMode(SweepMode::kList), kRefusalStatus);
    EXPECT_THAT(visa_.RequestOrder(), ElementsAreArray(row.order));
    EXPECT_EQ(manager_.GetSweepMode(), SweepMode::kContinuousWave);
    EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
    EXPECT_EQ(TriggerImmediately(manager_), 0);
    EXPECT_FALSE(IsMeasuring()) << "nor is anything read in the refused mode";
  }
}

// --- Error trail

struct QueryCase {
  std::uint32_t visa_status;  // of the read that fails; 0: the instrument refuses
  std::int32_t code;
  const char* text;
};
const std::array kQueryCases{
    QueryCase{0, -32763, "-32763"},
    QueryCase{0xBFFF0000, SignedBits(0xBFFF0000), "text of BF FF 00 00"},
    QueryCase{0xBFFF00A8, SignedBits(0xBFFF00A8), "text of BF FF 00 A8"},
    // Behind the last of VISA's codes and before the first: decimal in full.
    QueryCase{0xBFFF00A9, SignedBits(0xBFFF00A9), "-1073807191"},
    QueryCase{0xBFFEFFFF, SignedBits(0xBFFEFFFF), "-1073807361"},
};

TEST_F(ManagerTest, ErrorQueryTellsCodeAndText) {
  Open();
  for (const QueryCase& row : kQueryCases) {
    if (row.visa_status != 0) {
      visa_.SetResult(Function::kRead, row.visa_status, 1);
    } else {
      visa_.Rule(kWrite, kDwellId, kRefusal, 0, 1);
    }
    EXPECT_EQ(manager_.SetDwell(1.0), row.code);
    EXPECT_THAT(TakeError(), Pair(row.code, row.text));
    EXPECT_THAT(TakeError(), Pair(0, std::nullopt)) << "the trail is empty";
  }
}

TEST_F(ManagerTest, ErrorsAreToldOldestFirstAlsoAfterTheSession) {
  Open();
  visa_.Rule(kWrite, kDwellId, kRefusal, 0, 1);
  manager_.SetDwell(1.0);
  visa_.SetResult(Function::kRead, 0xBFFF00A6, 1);
  manager_.SetDwell(1.0);
  EXPECT_EQ(ErrorRecords().front().Location(), "File: .\\K4NHardWare\\K4NManager Line: 632");
  manager_.Close();
  EXPECT_EQ(TakeError().first, kRefusalStatus);
  EXPECT_THAT(TakeError(), Pair(Status{SignedBits(0xBFFF00A6)}, "-1073807194"))
      << "nobody left to ask for a text";
}

}  // namespace
