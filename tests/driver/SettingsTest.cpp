// The settings of an open session: what reaches the instrument, what reads back, and what clients
// hear of a refusal.
#include <gmock/gmock.h>

#include <cmath>
#include <regex>

#include "tests/driver/MemberWalk.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

using simulator::Fault;
using testing::ElementsAre;

class Settings : public SessionTest {
 protected:
  void SetUp() override { Open(); }
};

using Sweep = IZentrelK4NSweep;
constexpr const char* kInstrumentError =
    "Instrument error detected.  Use ErrorQuery() to determine the error(s).";
constexpr std::uint16_t kFrequencyListId = 2;
constexpr HRESULT kError = Code(0x80047001);

enum Reads { kTaken, kAsked, kBefore };

/// A setting while the instrument refuses every write, and what reads then: as if it had been
/// taken, what was asked for without the instrument's correction, or what was there before.
struct Refusal {
  std::string_view call;
  std::vector<double> numbers;
  Reads reads = kTaken;
  HRESULT result = kRefusal;
  std::size_t records = 1;    // in the error trail
  std::string_view get = {};  // that tells, if not the one of its name: of its interface, or whole
};

// One after the other on one session; each is taken then. What they write when they are taken, and
// what reads back, is the console's script.
const Refusal kRefusals[] = {
    {"RF.put Frequency", {30e9}, kAsked, kRefusal, 2},
    {"RF.put Level", {99}, kAsked, kRefusal, 2},
    {"RF.put OutputEnabled", {VARIANT_TRUE}, kTaken, kRefusal, 2},
    {"RF.Configure", {1e9, -3}, kBefore, kRefusal, 2, "Level"},
    {"FrequencyStep.ConfigureStartStop", {1e9, 2e9, 0, 1e7}, kTaken, S_OK, 3, "Size"},
    {"Sweep.put Mode", {3}, kBefore, kError},
    {"FrequencyStep.put Start", {1.5e9}, kTaken, S_OK, 2},
    {"FrequencyStep.put Stop", {1.6e9}, kTaken, S_OK, 2},
    {"FrequencyStep.put Dwell", {1.00004e-3}, kBefore},
    {"PowerStep.put Dwell", {0.5}, kBefore, S_OK},
    {"List.put Dwell", {2e-3}, kBefore},
    {"FrequencyStep.put SingleStepEnabled", {5}, kBefore},
    {"Sweep.put TriggerSource", {1}, kBefore},
    {"Sweep.put TriggerAction", {1}, kBefore},
    {"System.put SyncSourceDetection", {5}, kBefore},
    {"PowerStep.put SingleStepEnabled", {0}, kBefore, S_OK},
    {"List.put SingleStepEnabled", {VARIANT_TRUE}, kBefore},
    {"Sweep.Configure", {4, 2}, kBefore, kError, 1, "TriggerSource"},
    {"PowerStep.ConfigureStartStop", {-20, 0, 2}, kTaken, S_OK, 2, "Size"},
    {"PowerStep.put Start", {-10}, kTaken, S_OK, 2},
    {"PowerStep.put Stop", {-2}, kTaken, S_OK, 2},
    {"PowerStep.put Size", {4}, kTaken, S_OK, 2},
    {"System.put Atten", {1}, kTaken, kRefusal, 2},
    {"Acquisition.put Averaging", {99}, kAsked},
    {"PulseModulation.put Enabled", {1}},
    {"PulseGenerator.put InternalTriggerPeriod", {1.0004e-5}, kAsked},
    {"PulseGenerator.put Width", {3e-6}},
    {"PulseGenerator.Configure", {1, 1e-6, VARIANT_TRUE}, kTaken, kRefusal, 1, "Width"},
    {"PulseGeneratorDouble.put Enabled", {1}},
    {"PulseGeneratorDouble.put Delay", {2e-6}},
    {"PulseGeneratorDouble.Configure", {0, 3e-6}, kTaken, kRefusal, 1, "Delay"},
    {"PulseModulation.put ExternalPolarity", {1}},
    {"PulseModulation.put Source", {1}},
    {"RF.DisableAllModulation", {}, kTaken, kRefusal, 1, "PulseModulation.get Enabled"},
    {"TriggerOutput.put Width", {2.96e-6}, kTaken, S_OK},
    {"TriggerOutput.put Enabled", {5}, kBefore, S_OK},
    {"TriggerOutput.put Mode", {1002}, kBefore, S_OK, 2},
    {"TriggerOutput.put Polarity", {1}, kBefore, S_OK, 2},
    {"SyncGenerator.put Width", {2.004e-6}, kAsked, kRefusal, 1, "Period"},
    {"SyncGenerator.put Period", {1e-5}},
    {"SyncGenerator.put Delay", {1e-6}},
    {"System.put ExtRefGenFrequency", {1e9}, kAsked},
    {"System.put ExtRefGenEnabled", {VARIANT_TRUE}},
    {"System.put ExtRefPhaseDelay", {-7}, kBefore},
    {"System.put CompensMode", {9}, kAsked},
    {"System.put ExtPwrCtrl", {VARIANT_TRUE}, kAsked},
};

std::string GetOf(const Refusal& row) {
  if (row.get.find('.') != std::string_view::npos) return std::string(row.get);
  const std::string name(row.get.empty() ? row.call.substr(row.call.find(' ') + 1) : row.get);
  return std::string(row.call.substr(0, row.call.find('.'))) + ".get " + name;
}

TEST_F(Settings, AreRefusedThenTakenOneByOneAndReadTheSameAfterClose) {
  for (const Refusal& row : kRefusals) {
    SCOPED_TRACE(row.call);
    const std::string get = GetOf(row);
    const auto put = [&] { return Call(surface_, MemberOf(row.call), row.numbers).result; };
    const double before = NumberOf(surface_, get);
    instrument_.InjectFault(RefuseCommand(kWriteCommand, kRefusal));
    ExpectReported(put(), row.result, row.result == kError ? kInstrumentError : "",
                   __uuidof(Sweep));
    instrument_.ClearFaults();
    EXPECT_EQ(TakeErrors(), std::vector<LONG>(row.records, kRefusal));
    const double refused = NumberOf(surface_, get);
    ExpectReported(put(), S_OK, "", {});
    EXPECT_THAT(TakeErrors(), ElementsAre());
    const double wanted = row.reads == kBefore  ? before
                          : row.reads == kAsked ? row.numbers.front()
                                                : NumberOf(surface_, get);
    EXPECT_NEAR(refused, wanted, std::abs(wanted) * 1e-12);
  }

  std::vector<std::pair<const Walked*, Answer>> gets;
  for (const Walked& walked : AllMembers()) {
    if (walked.member->kind != members::Kind::kGet || !walked.IsSupported()) continue;
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

/// What needs no instrument, and the subject of tests of their own.
const std::regex kTestedElsewhere(
    R"((Root|Channel|PulsePacketGenerator)\..*|IIviDriverUtility\.ErrorQuery|)"
    R"(FrequencyStep\.put Scaling|List\.(ClearAll|Create.*)|Acquisition\.(Initiate|Abort))");

TEST(SettingTable, HasEveryMemberThatSets) {
  for (const Walked& walked : AllMembers()) {
    if (walked.member->kind == members::Kind::kGet || !walked.IsSupported()) continue;
    EXPECT_EQ(std::ranges::count(kRefusals, walked.name, &Refusal::call),
              std::regex_match(walked.name, kTestedElsewhere) ? 0 : 1)
        << walked.name;
  }
}

TEST_F(Settings, EveryNumberButZeroIsTrue) {
  EXPECT_EQ(surface_.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceExternal), S_OK);
  for (const Walked& walked : AllMembers()) {
    const members::Member& put = *walked.member;
    if (!walked.IsSupported() || put.parameters.empty()) continue;
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
  instrument_.InjectFault(RefuseCommand(kReadCommand, kRefusal));
  for (const std::string_view name :
       {"SerialNum", "Type", "RFButton", "PLLState", "ERGState", "LevelState"}) {
    const Answer answer = Call(surface_, MemberOf("System.get " + std::string(name)));
    EXPECT_EQ(answer.result, name.ends_with("State") ? S_OK : kRefusal) << name;
    EXPECT_THAT(answer.written, testing::IsEmpty()) << name;
  }
}

TEST_F(Settings, ARefusalOfBothListsIsHeardOfInTheTrailOnly) {
  const auto values = Doubles({1e9, 20e9});
  SAFEARRAY* list = values.Get();
  instrument_.InjectFault(Fault::Refuse(kFrequencyListId, kRefusal));
  EXPECT_EQ(surface_.list->CreateFrequencyPower(nullptr, &list, &list), S_OK);
  EXPECT_THAT(TakeErrors(), ElementsAre(kRefusal, kRefusal));
  EXPECT_EQ(surface_.list->CreateFrequency(nullptr, &list), kRefusal);
  EXPECT_EQ(surface_.list->CreateFrequency(nullptr, nullptr), S_OK) << "no array: no list";
}

class Bare : public SessionTest {
 protected:
  Bare()
      : SessionTest({.kind = simulator::InstrumentKind::kGenerator,
                     .serial_number_query = false,
                     .missing_files = {"\\FRAM\\TYPE.TXT"},
                     .attenuator_mode = 0,
                     .pulse_modulator = false}) {}
};

TEST(Identity, SerialNumberEndsAtItsPadding) {
  Bench bench({.serial_number = {"1101\0\0\0", 7}});
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
