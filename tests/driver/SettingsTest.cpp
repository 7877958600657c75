// The settings of an open session: what reaches the instrument, what reads back, and what clients
// hear of a refusal.
#include <gmock/gmock.h>

#include <cmath>

#include "tests/driver/MemberWalk.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

using simulator::Fault;
using testing::ElementsAre;
using testing::Pair;

class Settings : public SessionTest {
 protected:
  void SetUp() override { Open(); }
};

using Sweep = IZentrelK4NSweep;
constexpr const char* kInstrumentError =
    "Instrument error detected.  Use ErrorQuery() to determine the error(s).";
constexpr std::uint16_t kFrequencyId = 0;
constexpr std::uint16_t kFrequencyListId = 2;
constexpr std::uint16_t kAveragingId = 4;
constexpr std::uint16_t kDwellId = 5;
constexpr std::uint16_t kInputId = 7;
constexpr std::uint16_t kOutputId = 8;
constexpr std::uint16_t kCompensationId = 11;
constexpr std::uint16_t kReferenceId = 17;
constexpr std::uint16_t kPulseId = 31;
constexpr std::uint16_t kSyncId = 37;
constexpr std::uint16_t kLevelId = 79;
constexpr std::uint16_t kPhaseId = 92;
constexpr HRESULT kInstrumentErrorCode = Code(0x80047001);

/// A setting that the instrument first refuses, then takes.
struct Setting {
  std::string_view call;
  std::vector<double> numbers;
  std::string_view get;
  double reads;                 // afterwards
  std::string_view wire;        // the last write, as the instrument understands it; empty: none
  std::uint16_t parameter = 0;  // that is refused
  HRESULT refused = kRefusal;
  std::size_t records = 1;                   // in the error trail
  std::optional<double> refused_reads = {};  // what was asked for; otherwise what was there before
  HRESULT result = S_OK;
};

// clang-format off
// One after the other on one session. Numbers that the instrument corrects read back corrected.
const Setting kSettings[] = {
    {"RF.put Frequency", {2.4e9}, "RF.get Frequency", 2.4e9, "frequency #0 [2400000000]", kFrequencyId, kRefusal, 2, 2.4e9},
    {"RF.put Frequency", {30e9}, "RF.get Frequency", 20e9, "frequency #0 [20000000000]", kFrequencyId, kRefusal, 2, 30e9},
    {"RF.put Level", {99}, "RF.get Level", 20, "level #79 [0, 4, 0, 0, 99]", kLevelId, kRefusal, 2, 99},
    {"RF.put OutputEnabled", {VARIANT_TRUE}, "RF.get OutputEnabled", 1, "level #79 [1, 4, 0, 0, 20]", kLevelId, kRefusal, 2, 1},
    {"RF.Configure", {1e9, -3}, "RF.get Level", -3, "level #79 [1, 4, 0, 0, -3]", kFrequencyId, kRefusal, 2},
    {"FrequencyStep.ConfigureStartStop", {1e9, 2e9, 0, 1e7}, "FrequencyStep.get Size", 1e7, "frequency #0 [1000000000]", kFrequencyId, S_OK, 3, 1e7},
    {"Sweep.put Mode", {3 + 256}, "Sweep.get Mode", 3, "trigger input #7 [0, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kLevelId, kInstrumentErrorCode},
    {"FrequencyStep.put Start", {1.5e9}, "FrequencyStep.get Start", 1.5e9, "frequency #0 [1500000000, 51, 10000000, 2000000000]", kFrequencyId, S_OK, 2, 1.5e9},
    {"FrequencyStep.put Stop", {1.6e9}, "FrequencyStep.get Stop", 1.6e9, "frequency #0 [1500000000, 11, 10000000, 1600000000]", kFrequencyId, S_OK, 2, 1.6e9},
    {"FrequencyStep.put Scaling", {0}, "FrequencyStep.get Scaling", 0, ""},
    {"FrequencyStep.put Dwell", {1.00004e-3}, "PowerStep.get Dwell", 1e-3, "dwell #5 [0, 1000040]", kDwellId},
    {"FrequencyStep.put Dwell", {4.2949672}, "FrequencyStep.get Dwell", 4.2949672, "dwell #5 [0, 4294967200]", kDwellId},
    {"FrequencyStep.put Dwell", {10}, "FrequencyStep.get Dwell", 1.4100654, "dwell #5 [0, 1410065408]", kDwellId},
    {"PowerStep.put Dwell", {0.5}, "List.get Dwell", 0.5, "dwell #5 [0, 500000000]", kDwellId, S_OK},
    {"List.put Dwell", {2e-3}, "FrequencyStep.get Dwell", 2e-3, "dwell #5 [0, 2000000]", kDwellId},
    {"FrequencyStep.put SingleStepEnabled", {5}, "List.get SingleStepEnabled", 1, "trigger input #7 [0, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"Sweep.put TriggerSource", {1 + 256}, "Sweep.get TriggerSource", 1, "trigger input #7 [2, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"Sweep.put TriggerSource", {2}, "Sweep.get TriggerSource", 1, ""},
    {"Sweep.put TriggerAction", {1}, "Sweep.get TriggerAction", 1, "trigger input #7 [3, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"Sweep.put TriggerAction", {5}, "Sweep.get TriggerAction", 0, "trigger input #7 [2, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"System.put SyncSourceDetection", {5}, "System.get SyncSourceDetection", 1, "trigger input #7 [2, 1, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"PowerStep.put SingleStepEnabled", {0}, "FrequencyStep.get SingleStepEnabled", 0, "trigger input #7 [1, 1, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId, S_OK},
    {"List.put SingleStepEnabled", {VARIANT_TRUE}, "PowerStep.get SingleStepEnabled", 1, "trigger input #7 [2, 1, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"FrequencyStep.put SingleStepEnabled", {0}, "PowerStep.get SingleStepEnabled", 0, "trigger input #7 [1, 1, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"System.put SyncSourceDetection", {0}, "System.get SyncSourceDetection", 0, "trigger input #7 [1, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"Sweep.put TriggerSource", {0}, "Sweep.get TriggerSource", 0, "trigger input #7 [0, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kInputId},
    {"Sweep.put TriggerSource", {3}, "Sweep.get TriggerSource", 0, "", 0, kRefusal, 1, {}, Code(0xFFFFFFFF)},
    {"Sweep.Configure", {4, 2}, "Sweep.get TriggerSource", 2, "trigger input #7 [0, 0, 0, 0, 2, 0, 0, 0, 0, 0]", kLevelId, kInstrumentErrorCode},
    {"PowerStep.ConfigureStartStop", {-20, 0, 2}, "PowerStep.get Size", 2, "level #79 [1, 4, 0, 0, -20, 11, 2, 0]", kLevelId, S_OK, 2, 2},
    {"PowerStep.put Start", {-10}, "PowerStep.get Start", -10, "level #79 [1, 4, 0, 0, -10, 6, 2, 0]", kLevelId, S_OK, 2, -10},
    {"PowerStep.put Stop", {-2}, "PowerStep.get Stop", -2, "level #79 [1, 4, 0, 0, -10, 5, 2, -2]", kLevelId, S_OK, 2, -2},
    {"PowerStep.put Size", {4}, "PowerStep.get Size", 4, "level #79 [1, 4, 0, 0, -10, 3, 4, -2]", kLevelId, S_OK, 2, 4},
    {"System.put Atten", {0}, "System.get Atten", 0, "level #79 [1, 2, 0, 0, -10, 3, 4, -2]", kLevelId, kRefusal, 2, 0},
    {"System.put Atten", {1}, "System.get Atten", 1, "level #79 [1, 3, 0, 0, -10, 3, 4, -2]", kLevelId, kRefusal, 2, 1},
    {"System.put Atten", {2}, "System.get Atten", 2, "level #79 [1, 4, 0, 0, -10, 3, 4, -2]", kLevelId, kRefusal, 2, 2},
    {"System.put Atten", {3}, "System.get Atten", 3, "level #79 [1, 5, 0, 0, -10, 3, 4, -2]", kLevelId, kRefusal, 2, 3},
    {"System.put Atten", {7}, "System.get Atten", 3, "level #79 [1, 5, 0, 0, -10, 3, 4, -2]", kLevelId, kRefusal, 2, 3},
    {"Acquisition.put Averaging", {5}, "Acquisition.get Averaging", 5, "averaging #4 [5]", kAveragingId, kRefusal, 1, 5},
    {"Acquisition.put Averaging", {99}, "Acquisition.get Averaging", 14, "averaging #4 [14]", kAveragingId, kRefusal, 1, 99},
    {"PulseGenerator.put Width", {2e-6}, "PulseGenerator.get Width", 2e-6, ""},
    {"PulseModulation.put Enabled", {1}, "PulseModulation.get Enabled", -1, "pulse train #31 [2, 3, 0, 0, 1, 2000, 0]", kPulseId, kRefusal, 1, -1},
    {"PulseGenerator.put InternalTriggerPeriod", {1.0004e-5}, "PulseGenerator.get InternalTriggerPeriod", 1e-5, "pulse train #31 [2, 3, 0, 0, 1, 2000, 8004]", kPulseId, kRefusal, 1, 1.0004e-5},
    {"PulseGenerator.put Width", {3e-6}, "PulseGenerator.get Width", 3e-6, "pulse train #31 [2, 3, 0, 0, 1, 3000, 7000]", kPulseId, kRefusal, 1, 3e-6},
    {"PulseGenerator.Configure", {1, 1e-6, VARIANT_TRUE}, "PulseGenerator.get Width", 1e-6, "pulse train #31 [2, 3, 0, 0, 1, 1000, 9000]", kPulseId, kRefusal, 1, 1e-6},
    {"PulseGeneratorDouble.put Enabled", {1}, "PulseGeneratorDouble.get Enabled", -1, "pulse train #31 [2, 3, 0, 0, 2, 1000, 0, 1000, 8000]", kPulseId, kRefusal, 1, -1},
    {"PulseGeneratorDouble.put Delay", {2e-6}, "PulseGeneratorDouble.get Delay", 2e-6, "pulse train #31 [2, 3, 0, 0, 2, 1000, 2000, 1000, 6000]", kPulseId, kRefusal, 1, 2e-6},
    {"PulseGeneratorDouble.Configure", {0, 3e-6}, "PulseGeneratorDouble.get Delay", 3e-6, "pulse train #31 [2, 3, 0, 0, 1, 1000, 9000]", kPulseId, kRefusal, 1, 3e-6},
    {"PulseModulation.put ExternalPolarity", {1}, "PulseModulation.get ExternalPolarity", 1, "pulse train #31 [2, 3, 1, 0, 1, 1000, 9000]", kPulseId, kRefusal, 1, 1},
    {"PulseModulation.put Source", {1}, "PulseModulation.get Source", 1, "pulse train #31 [2, 2, 1, 0, 1, 1000, 9000]", kPulseId, kRefusal, 1, 1},
    {"PulseModulation.put Source", {2}, "PulseModulation.get Source", 0, "pulse train #31 [2, 3, 1, 0, 1, 1000, 9000]", kPulseId, kRefusal, 1, 0},
    {"PulseModulation.put ExternalPolarity", {5}, "PulseModulation.get ExternalPolarity", 0, "pulse train #31 [2, 3, 0, 0, 1, 1000, 9000]", kPulseId, kRefusal, 1, 0},
    {"RF.DisableAllModulation", {}, "PulseModulation.get Enabled", 0, "pulse train #31 [0, 3, 0, 0, 1, 0, 0]", kPulseId, kRefusal, 1, 0},
    {"TriggerOutput.put Width", {2.96e-6}, "TriggerOutput.get Width", 3e-6, "trigger output #8 [0, 0, 3, 0, 0, 0, 0, 0, 0, 0]", kOutputId, S_OK, 1, 3e-6},
    {"TriggerOutput.put Enabled", {5}, "TriggerOutput.get Enabled", 1, "trigger output #8 [0, 0, 3, 0, 0, 0, 1, 1, 1, 0]", kOutputId, S_OK},
    {"TriggerOutput.put Mode", {1001}, "TriggerOutput.get Mode", 1001, "trigger output #8 [1, 0, 3, 0, 0, 0, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Mode", {1002}, "TriggerOutput.get Mode", 1002, "trigger output #8 [2, 0, 3, 0, 0, 0, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Mode", {1003}, "TriggerOutput.get Mode", 1003, "trigger output #8 [3, 0, 3, 0, 0, 0, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Mode", {1004}, "TriggerOutput.get Mode", 1004, "trigger output #8 [6, 0, 3, 0, 0, 0, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Mode", {1005}, "TriggerOutput.get Mode", 1005, "trigger output #8 [5, 0, 3, 0, 0, 5, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Mode", {0}, "TriggerOutput.get Mode", 0, "trigger output #8 [0, 0, 3, 0, 0, 5, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Mode", {1}, "TriggerOutput.get Mode", 1, "trigger output #8 [4, 0, 3, 0, 0, 5, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Mode", {7}, "TriggerOutput.get Mode", 1, "trigger output #8 [4, 0, 3, 0, 0, 5, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Polarity", {1}, "TriggerOutput.get Polarity", 1, "trigger output #8 [4, 1, 3, 0, 0, 5, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"TriggerOutput.put Polarity", {5}, "TriggerOutput.get Polarity", 0, "trigger output #8 [4, 0, 3, 0, 0, 5, 1, 1, 1, 0]", kOutputId, S_OK, 2},
    {"SyncGenerator.put Width", {2.004e-6}, "SyncGenerator.get Period", 2e-6, "sync generator #37 [2004, 0, 0]", kSyncId, kRefusal, 1, 2.004e-6},
    {"SyncGenerator.put Period", {1e-5}, "SyncGenerator.get Period", 1e-5, "sync generator #37 [2000, 8000, 0]", kSyncId, kRefusal, 1, 1e-5},
    {"SyncGenerator.put Delay", {1e-6}, "SyncGenerator.get Delay", 1e-6, "sync generator #37 [2000, 8000, 1000]", kSyncId, kRefusal, 1, 1e-6},
    {"System.put ExtRefGenFrequency", {1e9}, "System.get ExtRefGenFrequency", 250e6, "reference #17 [0, 1000000000]", kReferenceId, kRefusal, 1, 1e9},
    {"System.put ExtRefGenEnabled", {VARIANT_TRUE}, "System.get ExtRefGenEnabled", 1, "reference #17 [1, 250000000]", kReferenceId, kRefusal, 1, 1},
    {"System.put ExtRefPhaseDelay", {-7}, "System.get ExtRefPhaseDelay", -7, "phase delay #92 [-7]", kPhaseId},
    {"System.put CompensMode", {4}, "System.get CompensMode", 4, "compensation mode #11 [4]", kCompensationId, kRefusal, 1, 4},
    {"System.put CompensMode", {9}, "System.get CompensMode", 4, "compensation mode #11 [9]", kCompensationId, kRefusal, 1, 9},
    {"System.put ExtPwrCtrl", {VARIANT_TRUE}, "System.get ExtPwrCtrl", 0, "trigger output #8 [6, 0, 3, 1, 0, 5, 1, 1, 1, 0]", kInputId, kRefusal, 1, -1},
    {"Channel.put FrequencyOffset", {1e6}, "Channel.get FrequencyOffset", 1e6, ""},
    {"Channel.put FrequencyMultiplier", {3}, "Channel.get FrequencyMultiplier", 3, ""},
    {"Channel.put FrequencyDivider", {2}, "Channel.get FrequencyDivider", 2, ""},
};
// clang-format on

class SettingWalk : public Settings {
 protected:
  HRESULT Put(const Setting& row) {
    instrument_.ClearRequests();
    return Call(surface_, MemberOf(row.call), row.numbers).result;
  }
};

TEST_F(SettingWalk, IsRefusedThenTakenOneByOneAndReadsTheSameAfterClose) {
  for (const Setting& row : kSettings) {
    SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.reads));
    const auto reads = [&](double wanted) {
      EXPECT_NEAR(NumberOf(surface_, row.get), wanted, std::abs(wanted) * 1e-12);
    };
    if (!row.wire.empty()) {
      const double before = NumberOf(surface_, row.get);
      instrument_.InjectFault(Fault::Refuse(row.parameter, kRefusal));
      ExpectReported(Put(row), row.refused,
                     row.refused == kInstrumentErrorCode ? kInstrumentError : "", __uuidof(Sweep));
      instrument_.ClearFaults();
      EXPECT_EQ(TakeErrors(), std::vector<LONG>(row.records, kRefusal));
      reads(row.refused_reads.value_or(before));
    }
    ExpectReported(Put(row), row.result, "", {});
    const auto writes = Writes();
    EXPECT_EQ(writes.empty() ? "" : writes.back(), row.wire);
    reads(row.reads);
    EXPECT_THAT(TakeErrors(), ElementsAre());
  }

  std::vector<std::pair<const Walked*, Answer>> gets;
  for (const Walked& walked : AllMembers()) {
    if (walked.member->kind != members::Kind::kGet || walked.FindUnsupported() != nullptr) continue;
    gets.emplace_back(&walked, Call(surface_, walked));
  }
  EXPECT_EQ(surface_.root->Close(), S_OK);
  EXPECT_EQ(surface_.trigger_output->put_Width(9e-6), S_OK) << "not taken, nor told";
  EXPECT_EQ(surface_.sync_generator->put_Period(9e-6), kNoSessionCode);
  const Surface fresh;
  for (const auto& [walked, open] : gets) {
    if (walked->name == "Root.get Initialized") continue;
    SCOPED_TRACE(walked->name);
    const Answer closed = Call(surface_, *walked);
    EXPECT_EQ(closed.result, Call(fresh, *walked).result) << "as without any session";
    EXPECT_EQ(closed.written, closed.result == S_OK ? open.written : std::vector<std::string>());
  }
  Open();
  EXPECT_EQ(NumberOf(surface_, "TriggerOutput.get Width"), 1e-6) << "a session starts afresh";
  EXPECT_EQ(NumberOf(surface_, "SyncGenerator.get Period"), 0);
}

// clang-format off
/// The subject of tests of their own.
constexpr std::string_view kTestedElsewhere[] = {
    "Root.Initialize", "Root.Close", "Root.SendSoftwareTrigger", "IIviDriverUtility.ErrorQuery",
    "List.ClearAll", "List.CreateFrequency", "List.CreatePower", "List.CreateFrequencyPower",
    "Acquisition.Initiate", "Acquisition.Abort", "Channel.FetchData", "Channel.LoadDetectorDataFromFile",
    "PulsePacketGenerator.put Enabled", "PulsePacketGenerator.Configure"};
// clang-format on

TEST(SettingTable, HasEveryMemberThatSets) {
  for (const Walked& walked : AllMembers()) {
    if (walked.member->kind == members::Kind::kGet || walked.FindUnsupported() != nullptr) continue;
    EXPECT_EQ(std::ranges::count(kSettings, walked.name, &Setting::call) == 0,
              std::ranges::count(kTestedElsewhere, walked.name) == 1)
        << walked.name;
  }
}

TEST_F(Settings, EveryNumberButZeroIsTrue) {
  EXPECT_EQ(surface_.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceExternal), S_OK);
  for (const Walked& walked : AllMembers()) {
    const members::Member& put = *walked.member;
    if (walked.FindUnsupported() != nullptr || put.parameters.empty()) continue;
    if (put.parameters[0].type != members::Type::kBool || put.parameters[0].IsOut()) continue;
    std::string get = walked.name.substr(0, walked.name.find('.')) + ".get ";
    get += put.kind == members::Kind::kPut ? put.name : "Enabled";
    if (put.name == "ExtPwrCtrl") get = "Sweep.get TriggerSource";
    for (const double flag : {1, 0, 2, 0, -1, 0, 0x100, 0}) {
      Call(surface_, walked, std::vector{flag});
      EXPECT_EQ(NumberOf(surface_, get) != 0, flag != 0) << walked.name << " " << flag;
    }
  }
}

TEST_F(Settings, AFailedReadIsToldButForThreeStates) {
  instrument_.InjectFault(RefuseCommand(4, kRefusal));
  for (const std::string_view name :
       {"SerialNum", "Type", "RFButton", "PLLState", "ERGState", "LevelState"}) {
    const Answer answer = Call(surface_, MemberOf("System.get " + std::string(name)));
    EXPECT_EQ(answer.result, name.ends_with("State") ? S_OK : kRefusal) << name;
    EXPECT_THAT(answer.written, testing::IsEmpty()) << name;
  }
}

TEST_F(Settings, NoticesAreNoFailures) {
  instrument_.InjectFault(Fault::Refuse(kFrequencyId, 3));
  EXPECT_EQ(surface_.rf->put_Frequency(3e9), S_OK);
  EXPECT_THAT(TakeErrors(), ElementsAre());
}

TEST_F(Settings, ListsComeBackAsTheInstrumentTookThemAndReplaceEachOther) {
  const auto lists = [&] {  // as a list sweep finds them
    EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModeList), S_OK);
    const auto state = instrument_.State();
    return std::pair(state.frequency.list, state.level.list);
  };
  const auto frequencies = Doubles({1e9, 30e9});
  const auto levels = Doubles({-10, 99});
  SAFEARRAY* frequency = frequencies.Get();
  SAFEARRAY* level = levels.Get();
  EXPECT_EQ(surface_.list->CreateFrequency(Text("any").Get(), &frequency), S_OK);
  EXPECT_THAT(ValuesOf(frequency), ElementsAre(1e9, 20e9));
  EXPECT_THAT(lists(), Pair(ElementsAre(1e9, 20e9), ElementsAre(-60)));
  EXPECT_EQ(surface_.list->CreatePower(nullptr, &level), S_OK);
  EXPECT_THAT(ValuesOf(level), ElementsAre(-10, 20));
  EXPECT_THAT(lists(), Pair(ElementsAre(1e7), ElementsAre(-10, 20)));
  EXPECT_EQ(surface_.list->CreateFrequencyPower(nullptr, &frequency, &level), S_OK);
  EXPECT_EQ(surface_.rf->Configure(2e9, -20), S_OK);
  EXPECT_EQ(NumberOf(surface_, "Sweep.get Mode"), ZentrelK4NSweepModeList) << "it stays";
  EXPECT_THAT(lists(), Pair(ElementsAre(1e9, 20e9), ElementsAre(-10, 20)));
  EXPECT_EQ(surface_.list->ClearAll(), S_OK);
  EXPECT_THAT(lists(), Pair(ElementsAre(1e7), ElementsAre(-60)));
  EXPECT_EQ(surface_.list->CreatePower(nullptr, &level), S_OK);
  EXPECT_EQ(surface_.list->CreateFrequency(nullptr, &frequency), S_OK);
  EXPECT_THAT(lists(), Pair(ElementsAre(1e9, 20e9), ElementsAre(-60)));

  instrument_.InjectFault(Fault::Refuse(kFrequencyListId, kRefusal));
  EXPECT_EQ(surface_.list->CreateFrequencyPower(nullptr, &frequency, &level), S_OK);
  EXPECT_THAT(TakeErrors(), ElementsAre(kRefusal, kRefusal)) << "heard of here only";
  EXPECT_EQ(surface_.list->CreateFrequency(nullptr, &frequency), kRefusal);
  instrument_.ClearFaults();
  EXPECT_EQ(surface_.list->CreateFrequency(nullptr, nullptr), S_OK) << "no array: no list";
  EXPECT_THAT(lists(), Pair(ElementsAre(1e7), ElementsAre(-60)));
  EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModeNone), S_OK);
  EXPECT_EQ(instrument_.State().level.mode, simulator::AxisMode::kFixed);
}

TEST_F(Settings, PacketsComeBackFillingThePeriod) {
  const auto widths = Doubles({1e-6, 2e-6});
  const auto delays = Doubles({1e-6, 9e-6});
  SAFEARRAY* width = widths.Get();
  SAFEARRAY* delay = delays.Get();
  EXPECT_EQ(surface_.pulse_generator->put_Width(1e-6), S_OK);
  EXPECT_EQ(surface_.pulse_generator->put_InternalTriggerPeriod(10e-6), S_OK);
  EXPECT_EQ(surface_.pulse_modulation->put_Enabled(VARIANT_TRUE), S_OK);
  EXPECT_EQ(surface_.packet->Configure(VARIANT_TRUE, &width, &delay), S_OK);
  EXPECT_THAT(ValuesOf(delay), ElementsAre(testing::DoubleEq(1e-6), testing::DoubleEq(6e-6)));
  EXPECT_EQ(instrument_.State().pulses.pulses,
            (std::vector<simulator::Pulse>{{1000, 1000}, {2000, 6000}}));
  EXPECT_EQ(surface_.packet->put_Enabled(VARIANT_FALSE), S_OK);
  EXPECT_EQ(instrument_.State().pulses.pulses.size(), 1u);
}

class Bare : public SessionTest {
 protected:
  static simulator::Options Instrument() {
    simulator::Options options;
    options.kind = simulator::InstrumentKind::kGenerator;
    options.serial_number_query = false;
    options.missing_files = {"\\FRAM\\TYPE.TXT"};
    options.attenuator_mode = 0;
    options.pulse_modulator = false;
    return options;
  }
  Bare() : SessionTest(Instrument()) {}
};

TEST(Identity, SerialNumberEndsAtItsPadding) {
  simulator::Options options;
  options.serial_number = std::string("1101\0\0\0", 7);
  Bench bench(options);
  bench.Open();
  EXPECT_EQ(bench.surface_.system->get_SerialNum(&bench.surface_.text), S_OK);
  EXPECT_EQ(TakeText(bench.surface_.text), "1101");
}

struct BareAnswer {
  std::string_view call;
  HRESULT result;
  std::string_view text;
  std::vector<std::string> reads = {};
};
const BareAnswer kBareAnswers[] = {
    {"Acquisition.put Averaging", kPropertyCode, "property Averaging."},
    {"Acquisition.get Averaging", kPropertyCode, "property Averaging."},
    {"Acquisition.Initiate", S_OK, ""},
    {"Acquisition.get Status", kPropertyCode, "property Status.", {"1"}},
    {"Channel.FetchData", kMethodCode, ""},
    {"Channel.LoadDetectorDataFromFile", kMethodCode, "method LoadDetectorDataFromFile."},
    {"System.get Atten", kPropertyCode, ""},
    {"System.put Atten", kPropertyCode, ""},
    {"PulseModulation.get Enabled", kPropertyCode, ""},
    {"PulseModulation.get ExternalPolarity", kPropertyCode, ""},
    {"System.get SerialNum", S_OK, "", {"1101190042"}},
    {"System.get Type", Code(0x8004705B), ""},
};

TEST_F(Bare, AGeneratorHasNoChannelsAndNoOptions) {
  Open("GENERATOR");
  for (const BareAnswer& row : kBareAnswers) {
    SCOPED_TRACE(row.call);
    const Walked& walked = MemberOf(row.call);
    const Answer answer = Call(surface_, walked);
    std::string text(row.text);
    if (!text.empty())
      text.insert(0, "ZentrelK4NLib: Does not support this class-compliant feature: ");
    ExpectReported(answer.result, row.result, text, walked.interface_entry->id);
    EXPECT_EQ(answer.written, row.reads);
  }
}

}  // namespace
}  // namespace driver_test
