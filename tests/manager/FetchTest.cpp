// From a block to a trace.
#include "tests/manager/ManagerFixture.h"
#include "tests/measurement/TempFile.h"
#include "tests/platform/Arrays.h"

namespace {

using testing::ElementsAre;

/// A detector whose value is the frequency in MHz, up to 10 GHz, whatever the level.
constexpr const char* kFrequencyDetector = "0 10000\n0 10000\n0 10000\n";

class FetchTest : public ManagerTest {
 protected:
  void LoadDetectors() {
    const TempFile file(kFrequencyDetector);
    for (std::size_t channel = 0; channel < kChannelCount; ++channel) {
      ASSERT_EQ(manager_.LoadDetectorData(channel, file.Path()), 0);
    }
  }
  /// A session whose sweep mode was refused.
  void OpenUnarmed() {
    visa_.Rule(kWrite, kFrequencyId, kRefusal);
    ASSERT_EQ(Initialize(), 0);
    ASSERT_EQ(ErrorRecords().size(), 1U);
    visa_.ClearRecord();
  }
  [[nodiscard]] std::vector<double> Row(int channel) const {
    const auto row = trace_.Row(channel);
    std::vector<double> values;
    for (const double value : row) values.push_back(std::round(value * 1e6) / 1e6);
    return values;
  }
};

struct PlanCase {
  SweepMode mode;
  bool with_list;
  std::vector<double> frequencies;  // MHz, of three points
};
const std::array kPlanCases{
    PlanCase{SweepMode::kFrequencyStep, true, {1000, 1500, 2000}},
    PlanCase{SweepMode::kPowerStep, true, {3000, 3000, 3000}},
    PlanCase{SweepMode::kList, true, {4000, 6000, 3000}},  // behind its end as without a sweep
    PlanCase{SweepMode::kList, false, {3000, 3000, 3000}},
};

TEST_F(FetchTest, EachPointHasItsFrequency) {
  Open();
  LoadDetectors();
  ASSERT_EQ(manager_.SetFrequency(3e9), 0);
  ASSERT_EQ(SetFrequencyStep(manager_), 0);
  const auto list = Doubles({4e9, 6e9});
  for (const PlanCase& row : kPlanCases) {
    EXPECT_EQ(manager_.SetFrequencyList(row.with_list ? list.Get() : nullptr), 0);
    ASSERT_EQ(manager_.SetSweepMode(row.mode), 0);
    visa_.CompleteData('A', Block(3));
    manager_.RequestSoftwareTrigger();
    ASSERT_TRUE(WaitForBlock());
    EXPECT_EQ(Row(0), row.frequencies);
    EXPECT_EQ(Row(2), row.frequencies);
  }
}

TEST_F(FetchTest, BlockKeepsTheSettingsThatItWasMeasuredWith) {
  Open();
  LoadDetectors();
  ASSERT_EQ(manager_.SetFrequency(1e9), 0);
  StoreBlock(SweepMode::kPowerStep);
  ASSERT_EQ(manager_.SetFrequency(5e9), 0);
  ASSERT_EQ(manager_.SetChannelMultiplier(0, 3.0), 0);
  ASSERT_EQ(manager_.SetChannelDivider(0, 2.0), 0);
  ASSERT_EQ(manager_.SetChannelOffset(0, 1e6), 0);
  ASSERT_EQ(manager_.FetchData(trace_), 0);
  EXPECT_THAT(Row(0), ElementsAre(1501.0)) << "the channel's transform is the present one";
  EXPECT_THAT(Row(1), ElementsAre(1000.0));

  ASSERT_EQ(manager_.SetFrequencyList(Doubles({4e9}).Get()), 0);
  StoreBlock(SweepMode::kList);
  manager_.ClearFrequencyList();
  ASSERT_EQ(manager_.FetchData(trace_), 0);
  EXPECT_THAT(Row(1), ElementsAre(5000.0)) << "but not its list";
}

struct DiscardCase : Row {
  std::function<void(CK4NManager&)> act;
  bool discards;
};
class DiscardTest : public FetchTest, public testing::WithParamInterface<DiscardCase> {};

TEST_P(DiscardTest, BlockNobodyFetched) {
  Open();
  StoreBlock(SweepMode::kList);
  GetParam().act(manager_);
  EXPECT_EQ(manager_.FetchData(trace_), GetParam().discards ? Status::kVisaTimeout : Status::kOk);
}

// clang-format off
const std::vector<DiscardCase> kDiscardCases = {
    {"ReadingTheOutputState", [](CK4NManager& m) { EXPECT_TRUE(m.GetOutputEnabled()); }, true},
    {"ExternalPowerControl", [](CK4NManager& m) { m.SetExtPwrCtrl(true); }, true},
    {"NoSuchTrigger", [](CK4NManager& m) { m.SetSweepTrigger({.source = TriggerSource::kUnknown}); }, true},
    {"FrequencyList", [](CK4NManager& m) { m.SetFrequencyList(nullptr); }, true},
    {"PowerList", [](CK4NManager& m) { m.SetPowerList(nullptr); }, true},
    {"ClearedLists", [](CK4NManager& m) { m.ClearFrequencyList(); m.ClearPowerList(); }, false},
    {"DoublePulse", [](CK4NManager& m) { m.SetDoublePulseEnabled(true); m.SetPulseModEnabled(true); }, false},
    {"Packet", [](CK4NManager& m) { m.ConfigurePacket(true, Doubles({1}).Get(), Doubles({1}).Get()); m.SetPulseModEnabled(true); }, false},
    {"PulseThatIsOff", [](CK4NManager& m) { m.SetPulseWidth(1.0); m.SetPulsePeriod(1.0); m.SetPulseModSource(PulseSource::kExternal); }, false},
    {"TriggerOutput", [](CK4NManager& m) { m.SetTriggerOutput({.enabled = true}); }, false},
    {"SoftwareTrigger", [](CK4NManager& m) { m.RequestSoftwareTrigger(); }, false},
    {"Identity", [](CK4NManager& m) { EXPECT_EQ(m.GetInstrumentType().status, 0); EXPECT_NE(m.GetSerialNumber().status, 1); }, false},
    {"State", [](CK4NManager& m) { EXPECT_EQ(m.GetPllState().status, 0); EXPECT_EQ(m.GetRfButton().status, 0); }, false},
    {"Detector", [](CK4NManager& m) { m.LoadDetectorData(0, TempFile(kFrequencyDetector).Path()); }, false},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Blocks, DiscardTest, testing::ValuesIn(kDiscardCases), RowName());

TEST_F(FetchTest, WithoutAnythingToFetch) {
  EXPECT_EQ(manager_.FetchData(trace_), Status::kNoSession);
  Open();
  EXPECT_EQ(manager_.FetchData(trace_), Status::kVisaTimeout);
  EXPECT_TRUE(visa_.Requests().empty()) << "once armed a fetch never reads by itself";
}

struct SingleReadCase : Row {
  std::uint16_t header_status;
  std::vector<std::uint8_t> body;
  ResultCode result;
  int points;  // of a trace; a failure that is no notice goes into the trail
};

class SingleReadTest : public FetchTest, public testing::WithParamInterface<SingleReadCase> {};

TEST_P(SingleReadTest, BeforeAnySweep) {
  OpenUnarmed();
  trace_.Resize(3, 2);
  const SingleReadCase& row = GetParam();
  visa_.control().CompleteData(static_cast<std::int16_t>(row.header_status), '@', row.body.data(),
                               row.body.size());
  EXPECT_EQ(manager_.FetchData(trace_), row.result);
  EXPECT_EQ(Requests().front(), Request(6, 0, '@', 0, ""));
  EXPECT_EQ(trace_.ColumnCount(), row.points);
  const auto trail = ErrorRecords();
  const bool recorded = Status::kOk != row.result && Status::kVisaTimeout != row.result;
  ASSERT_EQ(trail.size(), recorded ? 2U : 1U);
  EXPECT_TRUE(!recorded || trail.back() == (ErrorRecord{Status{row.result.number}, Site{309}}));

  visa_.CompleteData('@', Block(9));
  EXPECT_EQ(manager_.FetchData(trace_), 0) << "each fetch reads anew";
  EXPECT_EQ(trace_.ColumnCount(), 9);
}

// clang-format off
const std::vector<SingleReadCase> kSingleReadCases = {
    {"Block", 0, Block(5), 0, 5},
    {"StatusWordAlone", 0, Block(0), 0, 0},
    {"Nothing", 0, {}, Status::kVisaProtocolViolation, 2},
    {"OneByteTooMany", 0, std::vector<std::uint8_t>(15), Status::kVisaProtocolViolation, 2},
    {"FirstNotice", 1, Block(5), Status::kVisaTimeout, 2},
    {"LastNotice", 6, Block(5), Status::kVisaTimeout, 2},
    {"BehindTheNotices", 7, Block(5), 7, 2},
    {"Refused", kRefusal, {}, kRefusalStatus, 2},
    {"PllUnlocked", 0, Block(5, 0x8007), Status::kInstrumentPllUnlocked, 2},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Reads, SingleReadTest, testing::ValuesIn(kSingleReadCases), RowName());

TEST_F(FetchTest, IntegerReadingsAreNotScaled) {
  // Levels 5e6 / 2^24 at 1 and 1.044 times that at 2: a reading of 1 lies beyond, one of 1 / 256
  // before them.
  const TempFile file("0 10000\n1 1\n2 2\n");
  OpenUnarmed();
  ASSERT_EQ(manager_.LoadDetectorData(0, file.Path()), 0);
  for (const auto& [mark, value] : {std::pair('@', 2.0), std::pair('A', 1.0)}) {
    visa_.CompleteData(mark, Block(1, 0, 1));
    ASSERT_EQ(manager_.FetchData(trace_), 0);
    EXPECT_THAT(Row(0), ElementsAre(value)) << mark;
  }
}

TEST_F(FetchTest, FailedDetectorLoadKeepsTheTable) {
  OpenUnarmed();
  LoadDetectors();
  EXPECT_EQ(manager_.LoadDetectorData(0, "no such file.det"), Status::kCannotOpenFile);
  const TempFile bad("#VERSION 9\n1 2\n");
  EXPECT_EQ(manager_.LoadDetectorData(0, bad.Path()), Status::kInvalidFileFormat);
  EXPECT_EQ(manager_.LoadDetectorData(kChannelCount, bad.Path()), 0) << "no such channel";
  visa_.CompleteData('@', Block(1));
  ASSERT_EQ(manager_.FetchData(trace_), 0);
  EXPECT_THAT(Row(0), ElementsAre(10.0));
}

TEST_F(FetchTest, ThereIsNoFourthChannel) {
  EXPECT_EQ(manager_.SetChannelOffset(kChannelCount, 1.0), 0);
  EXPECT_EQ(manager_.SetChannelOffset(kChannelCount, 2e11), 0) << "whatever the value";
  EXPECT_EQ(manager_.SetChannelDivider(kChannelCount, 0.5), 0);
  EXPECT_EQ(manager_.GetChannel(kChannelCount), ChannelTransform{});
}

}  // namespace
