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
    for (std::size_t channel = 0; channel < kTraceChannels; ++channel) {
      ASSERT_EQ(manager_.LoadDetectorData(channel, file.Path()), 0);
    }
  }
  [[nodiscard]] std::vector<double> Row(int channel) const {
    const auto row = trace_.Row(channel);
    std::vector<double> values;
    for (const double value : row) values.push_back(std::round(value * 1e6) / 1e6);
    return values;
  }
};

TEST_F(FetchTest, EachPointHasItsFrequency) {
  struct Case {
    SweepMode mode;
    bool with_list;
    std::vector<double> frequencies;  // MHz, of three points
  };
  const Case rows[] = {
      {SweepMode::kFrequencyStep, true, {1000, 1500, 2000}},
      {SweepMode::kPowerStep, true, {3000, 3000, 3000}},
      {SweepMode::kList, true, {4000, 6000, 3000}},  // behind its end as without a sweep
      {SweepMode::kList, false, {3000, 3000, 3000}},
  };
  Open();
  LoadDetectors();
  ASSERT_EQ(manager_.SetFrequency(3e9), 0);
  ASSERT_EQ(SetFrequencyStep(manager_), 0);
  const auto list = Doubles({4e9, 6e9});
  for (const Case& row : rows) {
    EXPECT_EQ(manager_.SetFrequencyList(row.with_list ? list.Get() : nullptr), 0);
    ASSERT_EQ(manager_.SetSweepMode(row.mode), 0);
    visa_.CompleteData(Block(3));
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

/// Beside the operations that talk to the instrument.
TEST_F(FetchTest, WhatDiscardsABlockNobodyFetched) {
  using M = CK4NManager;
  struct Case {
    const char* name;
    bool discards;
    std::function<void(M&)> act;
  };
  const auto switch_on = [](M& m) { m.SetPulseModEnabled(true); };
  const Case rows[] = {
      {"reading the output", true, [](M& m) { EXPECT_TRUE(m.GetOutputEnabled()); }},
      {"no such trigger", true,
       [](M& m) { m.SetSweepTrigger({.source = TriggerSource::kUnknown}); }},
      {"no frequency list", true, [](M& m) { m.SetFrequencyList(nullptr); }},
      {"no power list", true, [](M& m) { m.SetPowerList(nullptr); }},
      {"cleared frequency list", false, &M::ClearFrequencyList},
      {"cleared power list", false, &M::ClearPowerList},
      {"double pulse", false,
       [&](M& m) {
         m.SetDoublePulseEnabled(true);
         switch_on(m);
       }},
      {"packet", false,
       [&](M& m) {
         m.ConfigurePacket(true, Doubles({1}).Get(), Doubles({1}).Get());
         switch_on(m);
       }},
      {"width while off", false, [](M& m) { m.SetPulseWidth(1.0); }},
      {"period while off", false, [](M& m) { m.SetPulsePeriod(1.0); }},
      {"source while off", false, [](M& m) { m.SetPulseModSource(PulseSource::kExternal); }},
      {"software trigger", false, &M::RequestSoftwareTrigger},
      {"detector", false, [](M& m) { m.LoadDetectorData(0, TempFile(kFrequencyDetector).Path()); }},
  };
  for (const Case& row : rows) {
    SCOPED_TRACE(row.name);
    Open();
    StoreBlock(SweepMode::kList);
    row.act(manager_);
    EXPECT_EQ(manager_.FetchData(trace_), row.discards ? Status::kVisaTimeout : Status::kOk);
  }
}

TEST_F(FetchTest, WithoutAnythingToFetch) {
  EXPECT_EQ(manager_.FetchData(trace_), Status::kNoSession);
  Open();
  EXPECT_EQ(manager_.FetchData(trace_), Status::kVisaTimeout);
  EXPECT_TRUE(visa_.Requests().empty()) << "once armed a fetch never reads by itself";
}

struct SingleReadCase : Row {
  std::uint16_t header_status;
  Bytes body;
  ResultCode result;
  int points;  // of a trace; a failure that is no notice goes into the trail
};

class SingleReadTest : public FetchTest, public testing::WithParamInterface<SingleReadCase> {};

TEST_P(SingleReadTest, BeforeAnySweep) {
  OpenUnarmed();
  trace_.Resize(3, 2);
  const SingleReadCase& row = GetParam();
  visa_.CompleteData(row.body, '@', row.header_status);
  EXPECT_EQ(manager_.FetchData(trace_), row.result);
  EXPECT_EQ(visa_.Requests().front(), (Request{.command = 6, .type = '@'}));
  EXPECT_EQ(trace_.ColumnCount(), row.points);
  std::vector<ErrorRecord> trail = {{Status{row.result.number}, Site{309}}};
  if (Status::kOk == row.result || Status::kVisaTimeout == row.result) trail.clear();
  EXPECT_EQ(ErrorRecords(), trail);

  visa_.CompleteData(Block(9), '@');
  EXPECT_EQ(manager_.FetchData(trace_), 0) << "each fetch reads anew";
  EXPECT_EQ(trace_.ColumnCount(), 9);
}

const std::vector<SingleReadCase> kSingleReadCases = {
    {"Block", 0, Block(5), 0, 5},
    {"StatusWordAlone", 0, Block(0), 0, 0},
    {"Nothing", 0, {}, Status::kVisaProtocolViolation, 2},
    {"OneByteTooMany", 0, Bytes(15), Status::kVisaProtocolViolation, 2},
    {"FirstNotice", 1, Block(5), Status::kVisaTimeout, 2},
    {"LastNotice", 6, Block(5), Status::kVisaTimeout, 2},
    {"BehindTheNotices", 7, Block(5), 7, 2},
    {"Refused", kRefusal, {}, kRefusalStatus, 2},
    {"PllUnlocked", 0, Block(5, 0x8007), Status::kInstrumentPllUnlocked, 2},
};
INSTANTIATE_TEST_SUITE_P(Reads, SingleReadTest, testing::ValuesIn(kSingleReadCases), RowName());

TEST_F(FetchTest, IntegerReadingsAreNotScaled) {
  // Levels 5e6 / 2^24 at 1 and 1.044 times that at 2: a reading of 1 lies beyond, one of 1 / 256
  // before them.
  const TempFile file("0 10000\n1 1\n2 2\n");
  OpenUnarmed();
  ASSERT_EQ(manager_.LoadDetectorData(0, file.Path()), 0);
  for (const auto& [mark, value] : {std::pair('@', 2.0), std::pair('A', 1.0)}) {
    visa_.CompleteData(Block(1, 0, 1), mark);
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
  EXPECT_EQ(manager_.LoadDetectorData(kTraceChannels, bad.Path()), 0) << "no such channel";
  visa_.CompleteData(Block(1), '@');
  ASSERT_EQ(manager_.FetchData(trace_), 0);
  EXPECT_THAT(Row(0), ElementsAre(10.0));
}

TEST_F(FetchTest, ThereIsNoFourthChannel) {
  EXPECT_EQ(manager_.SetChannelOffset(kTraceChannels, 1.0), 0);
  EXPECT_EQ(manager_.SetChannelOffset(kTraceChannels, 2e11), 0) << "whatever the value";
  EXPECT_EQ(manager_.SetChannelDivider(kTraceChannels, 0.5), 0);
  EXPECT_EQ(manager_.GetChannel(kTraceChannels), ChannelTransform{});
}

}  // namespace
