// The settings: what goes on the wire, what is kept, and what a refusal leaves behind.
#include "tests/manager/Operations.h"

namespace {

using scripted::Function;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Pair;

using namespace operations;

class OperationTest : public ManagerTest, public testing::WithParamInterface<Operation> {
 protected:
  /// Runs it, its request answered so.
  Status RunAnswered(std::uint16_t answer) {
    visa_.Rule(GetParam().command, GetParam().id, answer);
    return GetParam().run(manager_);
  }
};
class SettingTest : public OperationTest {};

TEST_P(OperationTest, RefusalIsReturnedAndGoesIntoTheTrail) {
  Open();
  ASSERT_EQ(manager_.SetSweepMode(GetParam().mode), 0);
  EXPECT_EQ(RunAnswered(kRefusal), kRefusalStatus);
  EXPECT_EQ(ErrorRecords(), Refusals(GetParam().trail));
}

TEST_P(OperationTest, WithoutSessionNothingHappens) {
  EXPECT_EQ(GetParam().run(manager_), Status::kNoSession);
  EXPECT_TRUE(visa_.Requests().empty());
  EXPECT_TRUE(ErrorRecords().empty());
}

TEST_P(OperationTest, DiscardsABlockOrNot) {
  for (const std::uint16_t answer : {std::uint16_t{0}, kRefusal}) {
    Open();
    StoreBlock(kList);
    RunAnswered(answer);
    EXPECT_EQ(manager_.FetchData(trace_), GetParam().discards ? Status::kVisaTimeout : Status::kOk)
        << answer;
  }
}

/// The worker is paused, the refused or accepted setting sent, and the worker resumed.
TEST_P(SettingTest, ComesBetweenTwoReads) {
  for (const std::uint16_t answer : {std::uint16_t{0}, kRefusal}) {
    OpenAndMeasure();
    RunAnswered(answer);
    EXPECT_TRUE(WaitUntilRequested("6", 1)) << "answer " << answer;
    EXPECT_EQ(visa_.RequestOrder().front(), "1") << "the read in progress is given up first";
  }
}

INSTANTIATE_TEST_SUITE_P(Settings, OperationTest, testing::ValuesIn(kSettings), RowName());
INSTANTIATE_TEST_SUITE_P(Others, OperationTest, testing::ValuesIn(kOthers), RowName());
INSTANTIATE_TEST_SUITE_P(Settings, SettingTest, testing::ValuesIn(kSettings), RowName());

TEST_F(ManagerTest, SettingsReadAsTheInstrumentSetThem) {
  Open();
  visa_.RuleBody(kWrite, kFrequencyId, Body(0, 0x60, {1e9 + 1, 3, 5e8 + 2, 2e9 + 3}), 0, 1);
  EXPECT_EQ(SetFrequencyStep(manager_), 0);
  EXPECT_THAT(Elements(manager_.GetFrequencyStep()), ElementsAre(1e9 + 1, 2e9 + 3, 5e8 + 2));
  visa_.RuleBody(kWrite, kPowerId, PowerBody(Output::kOff, -40));
  EXPECT_EQ(manager_.SetOutputEnabled(false), 0);
  EXPECT_EQ(manager_.GetLevel(), -40.0);
  EXPECT_EQ(SetSyncGenerator(manager_), 0);
  EXPECT_EQ(manager_.GetSyncGenerator().period, 30.0);
}

// --- Serial number

TEST_F(ManagerTest, SerialNumberIsAskedForThenReadFromItsFile) {
  struct Case {
    const char* name;
    std::uint16_t query;  // status of the query's answer
    Bytes answer;         // its body
    std::uint16_t file;   // status of the file's answer
    ResultCode result;
    const char* text;
    std::vector<const char*> order;
  };
  constexpr const char* kQuery = "4:83/20x1";
  constexpr const char* kFile = "4:10/40x2";
  const Case rows[] = {
      {"Answered", 0, "53 00 00 00"_hex, 0, 0, "*", {kQuery}},
      {"WrongChecksum", 0, "53 00 01 00"_hex, 0, 0, "AB", {kQuery, kFile}},
      {"UnknownQuery", 0x8002, {}, 0, 0, "AB", {kQuery, kFile}},
      {"NoFile", 0x8002, {}, 0x8103, -32509, "", {kQuery, kFile, "1"}},
      {"Refused", kRefusal, {}, 0, kRefusalStatus, "", {kQuery, "1"}},
  };
  Open();
  Bytes file(27);
  file[0] = 10;
  file.insert(file.end(), {'A', 'B'});
  visa_.RuleBody(kRead, 10, file);
  for (const Case& row : rows) {
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
  EXPECT_THAT(visa_.RequestOrder(), ElementsAre(kFile));
}

// --- Axes

/// What a setting puts on the two axes in each mode.
struct AxisCase : Row {
  SweepMode mode;
  Output output;
  std::function<Status(CK4NManager&)> set;
  std::vector<const char*> order;  // a power write with the output switch that it carries
};

class AxisTest : public ManagerTest, public testing::WithParamInterface<AxisCase> {};

TEST_P(AxisTest, TriesTheRequestThenProgramsTheMode) {
  Open(GetParam().output);
  EXPECT_EQ(manager_.GetOutputEnabled(), GetParam().output == Output::kOn);
  ASSERT_EQ(manager_.SetSweepMode(GetParam().mode), 0);
  visa_.ClearRecord();
  EXPECT_EQ(GetParam().set(manager_), 0);
  std::vector<std::string> order;
  for (const Request& request : visa_.Requests()) {
    const bool is_power = request.id == kPowerId || request.id == kPowerListId;
    order.push_back(request.Name());
    if (is_power) order.back() += request.Elements().front() == 1 ? " on" : " off";
  }
  EXPECT_THAT(order, ElementsAreArray(GetParam().order));
}

const std::vector<AxisCase> kAxisCases = [] {
  using enum Output;
  constexpr auto kCw = kContinuousWave;
  const auto frequency = Set(&M::SetFrequency, 1e9);
  const auto level = Set(&M::SetLevel, -20.0);
  const auto output = [](bool on) { return Set(&M::SetOutputEnabled, on); };
  const char* const cw_level = "3:79/62x5 on";
  const char* const power_step = "3:79/62x8 on";
  const char* const trial_step = "3:79/62x8 off";
  const char* const off = "3:79/62x5 off";
  const char* const cw = "3:0/60x1";
  const char* const step = "3:0/60x4";
  const char* const read_trigger = "4:7/10x10";
  const char* const trigger = "3:7/10x10";
  return std::vector<AxisCase>{
      {"FrequencyInCw", kCw, kOn, frequency, {cw}},
      {"FrequencyInPowerStep", kPowerStep, kOn, frequency, {cw}},
      {"FrequencyInFrequencyStep", kFrequencyStep, kOn, frequency, {cw, step}},
      {"FrequencyInList", kList, kOn, frequency, {cw, "3:2/60x0"}},
      {"LevelInCw", kCw, kOff, level, {off}},
      {"LevelInFrequencyStep", kFrequencyStep, kOn, level, {cw_level}},
      {"LevelInPowerStep", kPowerStep, kOn, level, {off, power_step}},
      {"LevelInPowerStepOutputOff", kPowerStep, kOff, level, {off}},
      {"LevelInPowerStepOutputNeither", kPowerStep, kNeither, level, {off}},
      {"LevelInList", kList, kOn, level, {off, "3:76/42x4 on"}},
      {"FrequencyStepInCw", kCw, kOn, SetFrequencyStep, {step, cw}},
      {"FrequencyStepInItsMode", kFrequencyStep, kOn, SetFrequencyStep, {step}},
      {"FrequencyStepInPowerStep", kPowerStep, kOn, SetFrequencyStep, {step, cw, power_step}},
      {"PowerStepInCwOutputOff", kCw, kOff, SetPowerStep, {trial_step}},
      {"PowerStepInCw", kCw, kOn, SetPowerStep, {trial_step, cw_level}},
      {"PowerStepInItsModeOutputOff", kPowerStep, kOff, SetPowerStep, {trial_step}},
      {"PowerStepInFrequencyStep", kFrequencyStep, kOn, SetPowerStep, {trial_step, cw_level, step}},
      {"OutputOffInPowerStep", kPowerStep, kOn, output(false), {off}},
      {"OutputOnInPowerStep", kPowerStep, kOff, output(true), {power_step}},
      {"ListMode", kCw, kOn, SetMode(kList), {"3:76/42x4 on", "3:2/60x0", read_trigger, trigger}},
  };
}();
INSTANTIATE_TEST_SUITE_P(Axes, AxisTest, testing::ValuesIn(kAxisCases), RowName());

TEST_F(ManagerTest, RefusedModeIsRestored) {
  struct Case {
    std::uint8_t refused;  // identifier
    std::vector<const char*> order;
    std::vector<int> trail;
  };
  const Case rows[] = {
      {kPowerListId, {"3:76/42x4", "1"}, {602}},
      {kFrequencyListId, {"3:76/42x4", "3:2/60x0", "1", "3:79/62x5"}, {601}},
  };
  for (const Case& row : rows) {
    Open();
    visa_.Rule(kWrite, row.refused, kRefusal, 0, 1);
    EXPECT_EQ(manager_.SetSweepMode(kList), kRefusalStatus);
    EXPECT_THAT(visa_.RequestOrder(), ElementsAreArray(row.order));
    EXPECT_EQ(manager_.GetSweepMode(), kContinuousWave);
    EXPECT_EQ(ErrorRecords(), Refusals(row.trail));
    EXPECT_EQ(TriggerImmediately(manager_), 0);
    EXPECT_FALSE(IsMeasuring()) << "nor is anything read in the refused mode";
  }
}

// --- Error trail

TEST_F(ManagerTest, ErrorQueryTellsCodeAndText) {
  struct Case {
    std::uint32_t visa_status;  // of the read that fails; 0: the instrument refuses
    std::int32_t code;
    const char* text;
  };
  const Case rows[] = {
      {0, -32763, "-32763"},
      {0xBFFF0000, SignedBits(0xBFFF0000), "text of BF FF 00 00"},
      {0xBFFF00A8, SignedBits(0xBFFF00A8), "text of BF FF 00 A8"},
      // Behind the last of VISA's codes and before the first: decimal in full.
      {0xBFFF00A9, SignedBits(0xBFFF00A9), "-1073807191"},
      {0xBFFEFFFF, SignedBits(0xBFFEFFFF), "-1073807361"},
  };
  Open();
  for (const Case& row : rows) {
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
