// From the first byte of a session to its last.
#include "tests/manager/ManagerFixture.h"
#include "tests/platform/Arrays.h"

namespace {

using scripted::Function;
using testing::ElementsAre;

const Request kSwitchOff = Write(79, 0x62, PowerElements(Output::kOff));

TEST_F(ManagerTest, ConnectionByteForByte) {
  ASSERT_EQ(Initialize(), 0);
  const Request level = Write(79, 0x62, PowerElements(Output::kOn));
  EXPECT_THAT(
      visa_.Requests(),
      ElementsAre(kRecovery, Write(23, 0x20, 1, "FB FF"_hex), Read(15, 0x10, 100),
                  Write(0, 0x60, {0, 2, 1e11, 1e11}), Read(8, 0x10, 10),
                  Write(8, 0x10, {0, 0, 255, 0, 0, 0, 0, 0, 0, 0}),
                  // What it is, how its output stands; averaging.
                  Write(3, 0x20, {18}), Read(79, 0x62, 5), Write(23, 0x20, 1, "FF FF"_hex),
                  Write(4, 0x10, {3}),
                  // Continuous wave: the power command's form, the level, 10 MHz, the trigger.
                  level, Write(79, 0x62, {1, 3, 8, 9, -20, 1, 0, -20}), level,
                  Write(0, 0x60, {1e7}), Read(7, 0x10, 10),
                  Write(7, 0x10, {0, 0, 0, 0, 2, 0, 0, 0, 0, 0}),
                  // Pulse modulation off.
                  Write(31, 0x40, 3, scripted::Encode(0x40, {0, 3, 0, 0, 1, 0, 0}))));
  const auto writes = visa_.Calls(Function::kWrite);
  for (std::size_t i = 0; i < writes.size(); i += 2) {
    const Bytes number = scripted::Encode(0x40, {double(i / 2 + 1)});
    EXPECT_THAT(std::span(writes[i]->bytes).subspan(12), testing::ElementsAreArray(number));
  }
  const auto opened = visa_.Calls(Function::kOpen);
  ASSERT_EQ(opened.size(), 1U);
  EXPECT_EQ(opened[0]->value, (std::uint64_t{5} << 16) + 1000) << "locked, within a second";
  EXPECT_TRUE(manager_.IsConnected());
  EXPECT_TRUE(ErrorRecords().empty());
}

TEST_F(ManagerTest, CloseSwitchesTheOutputOffThenClosesTheSession) {
  Open();
  EXPECT_EQ(manager_.Close(), 0);
  EXPECT_THAT(visa_.Requests(), ElementsAre(kSwitchOff));
  EXPECT_EQ(visa_.OpenSessions(), 0U);
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
  EXPECT_EQ(visa_.Requests()[1], kSwitchOff) << "the old output goes off first";
  EXPECT_EQ(visa_.OpenSessions(), 1U);
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
  EXPECT_EQ(visa_.Requests().back(), Write(79, 0x62, {0, 0, 0, 0, -60}));
}

TEST_F(ManagerTest, SecondInitializeForgetsTheState) {
  constexpr std::uint16_t kData = 6;
  // Each answer to the worker leaves one of the states alone.
  for (const auto& [answer, untouched] :
       {std::pair(6, &CK4NManager::GetPllState), std::pair(0x8007, &CK4NManager::GetLevelState)}) {
    ASSERT_EQ(Initialize(), 0);
    visa_.RuleBody(kRead, kButtonId, Body(kButtonId, 0x20, {1}), 0, 1);
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

TEST_F(ManagerTest, IsTheTopOfTheChainOfEvents) {
  EXPECT_EQ(manager_.SetManager(&manager_), &manager_);
  EXPECT_EQ(manager_.GetProcessor(), nullptr);
}

TEST_F(ManagerTest, FirmwareIsNewerForEveryDatedProgram) {
  EXPECT_FALSE(manager_.IsFirmwareNewer());
  // "Программа DSP от 1.02.1999" in Windows-1251.
  Bytes identity =
      "0F 00 CF F0 EE E3 F0 E0 EC EC E0 20 44 53 50 20 EE F2 20 31 2E 30 32 2E 31 39 39 39"_hex;
  identity.resize(102);
  visa_.RuleBody(kRead, 15, identity);
  Open();
  EXPECT_TRUE(manager_.IsFirmwareNewer());
}

using Arrange = std::function<void(scripted::Visa&)>;

struct InitializeCase : Row {
  Arrange arrange;
  ResultCode result;
  std::vector<std::pair<ResultCode, int>> trail;  // status and site
  std::vector<const char*> asked;  // requests whose order matters here, see RequestOrder
  std::vector<const char*> not_asked = {};
  const char* option = "";
};

class InitializeTest : public ManagerTest, public testing::WithParamInterface<InitializeCase> {};

TEST_P(InitializeTest, EndsAsItMust) {
  const InitializeCase& row = GetParam();
  const bool connected = Status::kOk == row.result;
  ExpectLimits();
  row.arrange(visa_);
  EXPECT_EQ(manager_.Initialize(kResource, row.option), row.result);
  std::vector<ErrorRecord> trail;
  for (const auto& [code, site] : row.trail) trail.push_back({Status{code.number}, Site{site}});
  EXPECT_EQ(ErrorRecords(), trail);
  const auto order = visa_.RequestOrder();
  auto from = order.begin();
  for (const std::string asked : row.asked) {
    from = std::find(from, order.end(), asked);
    ASSERT_NE(from, order.end()) << asked << " in " << testing::PrintToString(order);
    ++from;
  }
  for (const char* const request : row.not_asked) {
    EXPECT_THAT(order, testing::Not(testing::Contains(request)));
  }
  EXPECT_EQ(manager_.IsConnected(), connected);
  EXPECT_EQ(visa_.OpenSessions(), connected ? 1U : 0U);
  EXPECT_EQ(manager_.Close(), connected ? Status::kOk : Status::kNoSession);
}

Arrange Fail(Function function, Status result) {
  const auto code = static_cast<std::uint32_t>(result);
  return [=](scripted::Visa& visa) { visa.SetResult(function, code); };
}
Arrange Refuse(std::uint16_t command, std::uint8_t id, std::uint16_t status = kRefusal) {
  return [=](scripted::Visa& visa) { visa.Rule(command, id, status); };
}
void RefuseFirst(scripted::Visa& visa) { visa.Answer(kRefusal); }
void AnswerOtherKind(scripted::Visa& visa) {
  visa.RuleBody(kWrite, kKindId, Body(kKindId, 0x20, {2}));
}
void RefuseKindsAndRecoveries(scripted::Visa& visa) {
  visa.Rule(kWrite, kKindId, kRefusal);
  visa.Rule(1, 0, kRefusal);
  visa.Rule(1, 0, 0, 0, 1);
}
void HideOutputState(scripted::Visa& visa) {
  visa.Rule(kRead, kPowerId, 0x8002);
  visa.Rule(kRead, 12, 0x8002);
}
void HideFrequency(scripted::Visa& visa) {  // but for its limits
  visa.Rule(kWrite, kFrequencyId, 0x8002, 0x60);
  visa.RuleBody(kWrite, kFrequencyId, kLimits, 0x60, 1);
}
void Nothing(scripted::Visa&) {}

constexpr Status kNotFound{SignedBits(0xBFFF0011)};
constexpr Status kNoAttribute{SignedBits(0xBFFF001D)};
constexpr Status kWarning{0x3FFF007D};
constexpr Status kNotSupported = Status::kInstrumentNotSupported;
constexpr Status kFormUnknown = Status::kInstrumentFormUnknown;
constexpr Status kFailed = Status::kIdentificationFailed;
constexpr Status kMissing = Status::kUnknownResource;
constexpr Function kManager = Function::kOpenDefaultRM;
constexpr const char* kKind = "3:3/20x1";
constexpr const char* kState = "4:79/62x5";
constexpr const char* kAverage = "3:4/10x1";
constexpr const char* kLevel = "3:79/62x5";
constexpr const char* kPulse = "3:31/40x3";

// clang-format off
const std::vector<InitializeCase> kInitializeCases = {
    {"ManagerOfVisaFails", Fail(kManager, kNotFound), kNotFound, {{kNotFound, 991}}, {}, {"1"}},
    {"OpenFails", Fail(Function::kOpen, kNotFound), kNotFound, {{kNotFound, 991}}, {}, {"1"}},
    {"OpenWarns", Fail(Function::kOpen, kWarning), kWarning, {{kWarning, 991}}, {}, {"1"}},
    {"OpenWithANoticeIsNoFailure", Fail(Function::kOpen, Status{3}), 3, {}, {}, {"1"}},
    {"TimeoutCannotBeSet", Fail(Function::kSetAttribute, kNoAttribute),
     kNoAttribute, {{kNoAttribute, 991}}, {}, {"1"}},
    {"NoRecovery", Refuse(1, 0, 0x8002), kMissing, {{kNotSupported, 1002}}, {"1"}, {kKind, kLevel}},
    {"NoFrequencyForm", Refuse(kWrite, kFrequencyId, 0x8003),
     kMissing, {{kFormUnknown, 1002}}, {"3:0/60x4", "3:0/60x3", "3:0/40x3"}, {kKind, kLevel}},
    {"OtherFailureOfTheModelGoesOn", RefuseFirst,
     0, {{kRefusalStatus, 1002}}, {"1", kKind, kLevel, "3:31/40x2"}, {"4:15/10x100"}},
    {"OtherKindGoesOn", AnswerOtherKind,
     0, {{Status::kWrongInstrumentKind, 142}}, {kKind, kPulse}, {kState, kAverage, kLevel}},
    {"NoKindConfirmed", Refuse(kWrite, kKindId),
     0, {}, {kKind, "1", "1", kKind, "1", "1", kKind, "1", "1", kState, kAverage, kLevel, kPulse}},
    {"FailedRecoveryOfTheProbeIsNotTold", RefuseKindsAndRecoveries,
     0, {}, {kKind, kKind, kKind, kState}},
    {"Generator", Nothing, 0, {}, {kKind, kState, kLevel}, {kAverage}, "GENERATOR"},
    {"OptionIsCaseSensitive", Nothing, 0, {}, {kKind, kAverage}, {}, "generator"},
    {"NoOutputState", HideOutputState, kFailed, {{kNotSupported, 168}}, {kState}, {kLevel, kPulse}},
    {"OtherFailureOfTheOutputStateGoesOn", Refuse(kRead, kPowerId),
     0, {{kRefusalStatus, 168}}, {kState, kPulse}, {kAverage, "3:0/60x1"}},
    {"RefusedAveragingGoesOn", Refuse(kWrite, 4),
     0, {{kRefusalStatus, 701}}, {kAverage, kLevel, kPulse}},
    {"SweepModeNotSupported", HideFrequency,
     kFailed, {{kNotSupported, 601}}, {"3:0/60x1", kLevel}, {kPulse}},
    {"NoPulseModulator", Refuse(kWrite, kPulseId, 0x8002), 0, {}, {kPulse}},
    {"NoPulseModulatorOfThisForm", Refuse(kWrite, kPulseId, 0x8003), 0, {}, {kPulse}},
    {"PulseModulatorFails", Refuse(kWrite, kPulseId),
     kRefusalStatus, {{kRefusalStatus, 652}}, {kPulse}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Branches, InitializeTest, testing::ValuesIn(kInitializeCases), RowName());

TEST_F(ManagerTest, KindsAreProbedFromAnalyserDownAndTheConfirmedOneStands) {
  visa_.Rule(kWrite, kKindId, kRefusal, 0, 2);
  ASSERT_EQ(Initialize(), 0);
  std::vector<Request> probes = visa_.Requests();
  std::erase_if(probes, [](const Request& request) { return request.id != kKindId; });
  EXPECT_THAT(probes, ElementsAre(Write(3, 0x20, {18}), Write(3, 0x20, {2}), Write(3, 0x20, {1})));
  EXPECT_EQ(manager_.FetchData(trace_), Status::kMethodNotSupported) << "a generator after all";
}

}  // namespace
