// From the first byte of a session to its last.
#include "tests/manager/ManagerFixture.h"
#include "tests/platform/Arrays.h"

namespace {

using scripted::Function;
using testing::ElementsAre;
using testing::ElementsAreArray;

std::string PowerProbe() {
  return WriteRequest(
      8, 0x62,
      PowerBody(1, kMinus20) + "| 00 00 01 00 00 00 | 00 00 00 00 00 00 |" + std::string(kMinus20));
}

TEST_F(ManagerTest, ConnectionByteForByte) {
  ASSERT_EQ(Initialize(), 0);
  const std::string level = PowerRequest(1, kMinus20);
  EXPECT_THAT(
      Requests(),
      ElementsAre(RecoverRequest(), WriteRequest(1, 0x20, "17 00 FB FF"),
                  ReadRequest(100, 0x10, 15, "0F 00" + Repeat(" 00", 100)),
                  WriteRequest(4, 0x60,
                               "00 00 | 00 00 00 00 00 00 | 02 00 00 00 00 00 | 00 E8 76 48 17 00 |"
                               "00 E8 76 48 17 00"),
                  ReadRequest(10, 0x10, 8, "08 00" + Repeat(" 00", 10)),
                  WriteRequest(10, 0x10, "08 00 | 00 00 FF 00 00" + Repeat(" 00", 5)),
                  // What it is, and how its output stands.
                  WriteRequest(1, 0x20, "03 00 12 00"),
                  ReadRequest(5, 0x62, 79, "4F 00" + Repeat(" 00", 30)),
                  // Averaging.
                  WriteRequest(1, 0x20, "17 00 FF FF"), WriteRequest(1, 0x10, "04 00 03 00"),
                  // Continuous wave: the power command's form, the level, 10 MHz, the trigger.
                  level, PowerProbe(), level, WriteRequest(1, 0x60, "00 00 | 80 96 98 00 00 00"),
                  TriggerInputRead(),
                  WriteRequest(10, 0x10, "07 00 | 00 00 00 00 02" + Repeat(" 00", 5)),
                  // Pulse modulation off.
                  WriteRequest(3, 0x40,
                               "1F 00 | 00 00 00 00 | 03 00 00 00 | 00 00 00 00 | 00 00 00 00 |"
                               "01 00 00 00 | 00 00 00 00 | 00 00 00 00")));
  const auto requests = visa_.Requests();
  for (std::size_t i = 0; i < requests.size(); ++i) {
    EXPECT_EQ(requests[i].substr(36, 11),
              scripted::ToHex({{static_cast<std::uint8_t>(i + 1), 0}}) + " 00 00")
        << "number of message " << i;
  }
  const auto opened = visa_.Calls(Function::kOpen);
  ASSERT_EQ(opened.size(), 1U);
  EXPECT_EQ(opened[0].value, (std::uint64_t{5} << 16) + 1000) << "locked, within a second";
  EXPECT_TRUE(manager_.IsConnected());
  EXPECT_TRUE(ErrorRecords().empty());
}

TEST_F(ManagerTest, CloseSwitchesTheOutputOffThenClosesTheSession) {
  Open();
  EXPECT_EQ(manager_.Close(), 0);
  EXPECT_THAT(Requests(), ElementsAre(PowerRequest(0, kMinus20)));
  EXPECT_EQ(visa_.control().OpenSessions(), 0U);
  EXPECT_FALSE(manager_.IsConnected());
  EXPECT_EQ(manager_.Close(), Status::kNoSession);
  EXPECT_EQ(manager_.SetFrequency(1e9), Status::kNoSession);
}

TEST_F(ManagerTest, SecondInitializeEndsTheFirstSessionAndStartsFromDefaults) {
  Open();
  ASSERT_EQ(manager_.SetFrequency(2e9), 0);
  ASSERT_EQ(manager_.SetChannelOffset(1, 5.0), 0);
  ASSERT_EQ(manager_.SetFrequencyList(Doubles({1e9}).Get()), 0);
  ASSERT_EQ(manager_.SetPowerList(Doubles({-10.0}).Get()), 0);
  ASSERT_EQ(manager_.SetPulseWidth(5.0), 0);
  StartMeasuring();
  ASSERT_EQ(Initialize("", "TCPIP0::hostB::5025::SOCKET"), 0);
  EXPECT_EQ(Requests()[1], PowerRequest(0, kMinus20)) << "the old output goes off first";
  EXPECT_EQ(visa_.control().OpenSessions(), 1U);
  EXPECT_EQ(manager_.GetFrequency(), 1e7);
  EXPECT_EQ(manager_.GetChannel(1).offset, 0.0);
  EXPECT_FALSE(HasList(kFrequencyListId));
  EXPECT_FALSE(HasList(kPowerListId));
  EXPECT_EQ(manager_.GetPulseSettings().width, 1.0);

  // The mode that the worker reads in, too, where this session programs none.
  StartMeasuring();
  visa_.Rule(kRead, kPowerId, kRefusal);
  ASSERT_EQ(Initialize(), 0);
  EXPECT_EQ(TriggerImmediately(manager_), 0);
  EXPECT_FALSE(IsMeasuring());
  EXPECT_EQ(manager_.Close(), 0);
  const std::string zeros = Repeat(" 00", 4 * 6);
  EXPECT_EQ(Requests().back(), WriteRequest(5, 0x62, "4F 00" + zeros + "00 00 C4 FF FF FF"));
}

TEST_F(ManagerTest, SecondInitializeForgetsTheState) {
  constexpr std::uint16_t kData = 6;
  // Each answer to the worker leaves one of the states alone.
  for (const auto& [answer, untouched] :
       {std::pair(6, &CK4NManager::GetPllState), std::pair(0x8007, &CK4NManager::GetLevelState)}) {
    ASSERT_EQ(Initialize(), 0);
    visa_.RuleBody(kRead, kButtonId, 0, "22 00 01 00", 0, 1);
    for (const auto get :
         {&CK4NManager::GetRfButton, &CK4NManager::GetPllState, &CK4NManager::GetLevelState}) {
      EXPECT_TRUE(State(get));
    }
    visa_.Rule(kData, 0, 0x801C);
    StartMeasuring();
    ASSERT_TRUE(WaitUntilRequested("6", 1)) << "the fault is noted";
    visa_.Rule(kData, 0, static_cast<std::uint16_t>(answer));
    ASSERT_EQ(Initialize(), 0);
    StartMeasuring();
    EXPECT_FALSE(State(untouched)) << answer;
    EXPECT_FALSE(State(&CK4NManager::GetRfButton));
    EXPECT_TRUE(State(&CK4NManager::GetErgState));
  }
}

TEST_F(ManagerTest, DestructionSwitchesTheOutputOff) {
  {
    CK4NManager manager;
    ASSERT_EQ(manager.Initialize(kResource, ""), 0);
    visa_.ClearRecord();
  }
  EXPECT_THAT(Requests(), ElementsAre(PowerRequest(0, kMinus20)));
  EXPECT_EQ(visa_.control().OpenSessions(), 0U);
}

TEST_F(ManagerTest, FirmwareIsNewerForEveryDatedProgram) {
  EXPECT_FALSE(manager_.IsFirmwareNewer());
  // "Программа DSP от 1.02.1999" in Windows-1251.
  visa_.RuleBody(
      kRead, 15, 0,
      "0F 00 CF F0 EE E3 F0 E0 EC EC E0 20 44 53 50 20 EE F2 20 31 2E 30 32 2E 31 39 39 39" +
          Repeat(" 00", 74));
  Open();
  EXPECT_TRUE(manager_.IsFirmwareNewer());
}

struct InitializeCase : Row {
  void (*arrange)(scripted::Visa& visa);
  const char* option;
  ResultCode result;
  std::vector<ErrorRecord> trail;
  std::vector<const char*> asked;  // requests whose order matters here, see RequestOrder
  std::vector<const char*> not_asked = {};
};

class InitializeTest : public ManagerTest, public testing::WithParamInterface<InitializeCase> {};

TEST_P(InitializeTest, EndsAsItMust) {
  const InitializeCase& row = GetParam();
  const bool connected = Status::kOk == row.result;
  visa_.RuleBody(kWrite, kFrequencyId, 0, kLimits, 0x60, 1);
  row.arrange(visa_);
  EXPECT_EQ(manager_.Initialize(kResource, row.option), row.result);
  EXPECT_THAT(ErrorRecords(), ElementsAreArray(row.trail));
  const auto order = visa_.RequestOrder();
  auto from = order.begin();
  for (const std::string asked : row.asked) {
    from = std::find(from, order.end(), asked);
    EXPECT_NE(from, order.end()) << asked << " in " << testing::PrintToString(order);
    if (from != order.end()) ++from;
  }
  for (const char* const request : row.not_asked) {
    EXPECT_THAT(order, testing::Not(testing::Contains(request)));
  }
  EXPECT_EQ(manager_.IsConnected(), connected);
  EXPECT_EQ(visa_.control().OpenSessions(), connected ? 1U : 0U);
  EXPECT_EQ(manager_.Close(), connected ? Status::kOk : Status::kNoSession);
}

constexpr Status kRsrcNotFound{SignedBits(0xBFFF0011)};
constexpr Status kNotSupported = Status::kInstrumentNotSupported;
constexpr Status kFormUnknown = Status::kInstrumentFormUnknown;
constexpr auto kOrdinary = [](scripted::Visa&) {};

// clang-format off
const std::vector<InitializeCase> kInitializeCases = {
    {"ManagerOfVisaFails", [](auto& visa) { visa.SetResult(Function::kOpenDefaultRM, 0xBFFF0011); }, "", kRsrcNotFound, {{kRsrcNotFound, Site{991}}}, {}, {"1"}},
    {"OpenFails", [](auto& visa) { visa.SetResult(Function::kOpen, 0xBFFF0011); }, "", kRsrcNotFound, {{kRsrcNotFound, Site{991}}}, {}, {"1"}},
    {"OpenWithAWarningIsNoSession", [](auto& visa) { visa.SetResult(Function::kOpen, 0x3FFF007D); }, "", 0x3FFF007D, {{Status{0x3FFF007D}, Site{991}}}, {}, {"1"}},
    {"OpenWithANoticeIsNoSessionAndNoFailure", [](auto& visa) { visa.SetResult(Function::kOpen, 3); }, "", 3, {}, {}, {"1"}},
    {"TimeoutCannotBeSet", [](auto& visa) { visa.SetResult(Function::kSetAttribute, 0xBFFF001D); }, "", Status{SignedBits(0xBFFF001D)}, {{Status{SignedBits(0xBFFF001D)}, Site{991}}}, {}, {"1"}},
    {"RecoveryNotSupported", [](auto& visa) { visa.Rule(1, 0, 0x8002); }, "", Status::kUnknownResource, {{kNotSupported, Site{1002}}}, {"1"}, {"3:3/20x1", "3:79/62x5"}},
    {"NoFrequencyFormSupported", [](auto& visa) { visa.Rule(kWrite, kFrequencyId, 0x8003); },
     "", Status::kUnknownResource, {{kFormUnknown, Site{1002}}}, {"3:0/60x4", "3:0/60x3", "3:0/40x3"}, {"3:3/20x1", "3:79/62x5"}},
    {"OtherFailureOfTheModelGoesOn", [](auto& visa) { visa.Answer(kRefusal); }, "", 0, {{kRefusalStatus, Site{1002}}}, {"1", "3:3/20x1", "3:79/62x5", "3:31/40x2"}, {"4:15/10x100"}},
    {"OtherKindGoesOn", [](auto& visa) { visa.RuleBody(kWrite, kKindId, 0, "03 00 02 00"); },
     "", 0, {{Status::kWrongInstrumentKind, Site{142}}}, {"3:3/20x1", "3:31/40x3"}, {"4:79/62x5", "3:4/10x1", "3:79/62x5"}},
    {"NoKindConfirmed", [](auto& visa) { visa.Rule(kWrite, kKindId, kRefusal); }, "", 0, {}, {"3:3/20x1", "1", "1", "3:3/20x1", "1", "1", "3:3/20x1", "1", "1", "4:79/62x5", "3:4/10x1", "3:79/62x5", "3:31/40x3"}},
    {"FailedRecoveryOfTheProbeIsNotTold", [](auto& visa) { visa.Rule(kWrite, kKindId, kRefusal); visa.Rule(1, 0, kRefusal); visa.Rule(1, 0, 0, 0, 1); }, "", 0, {}, {"3:3/20x1", "3:3/20x1", "3:3/20x1", "4:79/62x5"}},
    {"GeneratorIsAskedForThatKindAlone", kOrdinary, "GENERATOR", 0, {}, {"3:3/20x1", "4:79/62x5", "3:79/62x5"}, {"3:4/10x1"}},
    {"OptionIsCaseSensitive", kOrdinary, "generator", 0, {}, {"3:3/20x1", "3:4/10x1"}},
    {"OutputStateNotSupported", [](auto& visa) { visa.Rule(kRead, kPowerId, 0x8002); visa.Rule(kRead, 12, 0x8002); },
     "", Status::kIdentificationFailed, {{kNotSupported, Site{168}}}, {"4:79/62x5"}, {"3:79/62x5", "3:31/40x3"}},
    {"OtherFailureOfTheOutputStateGoesOn", [](auto& visa) { visa.Rule(kRead, kPowerId, kRefusal); }, "", 0, {{kRefusalStatus, Site{168}}}, {"4:79/62x5", "3:31/40x3"}, {"3:4/10x1", "3:0/60x1"}},
    {"RefusedAveragingGoesOn", [](auto& visa) { visa.Rule(kWrite, 4, kRefusal); }, "", 0, {{kRefusalStatus, Site{701}}}, {"3:4/10x1", "3:79/62x5", "3:31/40x3"}},
    {"SweepModeNotSupported", [](auto& visa) { visa.Rule(kWrite, kFrequencyId, 0x8002, 0x60); visa.RuleBody(kWrite, kFrequencyId, 0, kLimits, 0x60, 1); },
     "", Status::kIdentificationFailed, {{kNotSupported, Site{601}}}, {"3:0/60x1", "3:79/62x5"}, {"3:31/40x3"}},
    {"NoPulseModulator", [](auto& visa) { visa.Rule(kWrite, kPulseId, 0x8002); }, "", 0, {}, {"3:31/40x3"}},
    {"NoPulseModulatorOfThisForm", [](auto& visa) { visa.Rule(kWrite, kPulseId, 0x8003); }, "", 0, {}, {"3:31/40x3"}},
    {"PulseModulatorFails", [](auto& visa) { visa.Rule(kWrite, kPulseId, kRefusal); }, "", kRefusalStatus, {{kRefusalStatus, Site{652}}}, {"3:31/40x3"}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Branches, InitializeTest, testing::ValuesIn(kInitializeCases), RowName());

TEST_F(ManagerTest, KindsAreProbedFromAnalyserDownAndTheConfirmedOneStands) {
  visa_.Rule(kWrite, kKindId, kRefusal, 0, 2);
  ASSERT_EQ(Initialize(), 0);
  std::vector<std::string> probes;
  for (const std::string& request : Requests()) {
    if (request.find("| 03 00") != request.npos) probes.push_back(request);
  }
  EXPECT_THAT(probes, ElementsAre(WriteRequest(1, 0x20, "03 00 12 00"),
                                  WriteRequest(1, 0x20, "03 00 02 00"),
                                  WriteRequest(1, 0x20, "03 00 01 00")));
  EXPECT_EQ(manager_.FetchData(trace_), Status::kMethodNotSupported) << "a generator after all";
}

}  // namespace
