// The measurement worker: when it reads, what it keeps, how it makes way.
#include "tests/manager/ManagerFixture.h"

namespace {

using scripted::Function;
using testing::ElementsAre;

using M = CK4NManager;

struct ResumeCase : Row {
  bool measures;
  void (*arrange)(M& m);
  Output output = Output::kOn;
  const char* option = "";
  bool refuses_frequency = false;  // the first that is set
};

class ResumeTest : public ManagerTest, public testing::WithParamInterface<ResumeCase> {};

TEST_P(ResumeTest, DependsOnTheSettings) {
  Open(GetParam().output, GetParam().option);
  if (GetParam().refuses_frequency) visa_.Rule(kWrite, kFrequencyId, kRefusal, 0, 1);
  GetParam().arrange(manager_);
  EXPECT_EQ(IsMeasuring(), GetParam().measures);
}

void ListMode(M& m) { m.SetSweepMode(SweepMode::kList); }
void ImmediateList(M& m) {
  TriggerImmediately(m);
  ListMode(m);
}
void ImmediateFrequencyStep(M& m) {
  TriggerImmediately(m);
  m.SetSweepMode(SweepMode::kFrequencyStep);
}
void ConfiguredFrequencyStep(M& m) {
  SetFrequencyStep(m);
  ImmediateFrequencyStep(m);
}
void TriggeredList(M& m) {
  ListMode(m);
  m.RequestSoftwareTrigger();
}
void TriggerBeforeList(M& m) {
  m.RequestSoftwareTrigger();
  m.SetDwell(1.0);
  ListMode(m);
}

const std::vector<ResumeCase> kResumeCases = {
    {"NoSweep", false, [](M& m) { TriggerImmediately(m); }},
    {"List", true, ImmediateList},
    {"FrequencyStepNotConfigured", false, ImmediateFrequencyStep},
    {"FrequencyStepConfigured", true, ConfiguredFrequencyStep},
    {"FrequencyStepRefused", false, ConfiguredFrequencyStep, Output::kOn, "", true},
    {"SoftwareWithoutTrigger", false, ListMode},
    {"SoftwareWithTrigger", true, TriggeredList},
    {"TriggerBeforeItsMode", true, TriggerBeforeList},
    {"AnalyserOutputOff", true, ImmediateList, Output::kOff},
    {"GeneratorOutputOff", false, ImmediateList, Output::kOff, "GENERATOR"},
    {"GeneratorOutputNeither", false, ImmediateList, Output::kNeither, "GENERATOR"},
    {"GeneratorOutputOn", true, ImmediateList, Output::kOn, "GENERATOR"},
};
INSTANTIATE_TEST_SUITE_P(Resume, ResumeTest, testing::ValuesIn(kResumeCases), RowName());

TEST_F(ManagerTest, WorkerStandsStillDuringALoad) {
  EXPECT_EQ(manager_.LoadDetectorData(0, "none.det"), Status::kNoSession);
  OpenAndMeasure();
  EXPECT_EQ(manager_.LoadDetectorData(0, "none.det"), Status::kCannotOpenFile);
  EXPECT_THAT(visa_.RequestOrder(), testing::Contains("1")) << "the read in progress is given up";
}

enum class Outcome { kKept, kDropped, kRecovered };

struct ReadCase : Row {
  Bytes block;
  Outcome outcome;
  std::vector<ErrorRecord> trail = {};
  std::uint16_t header_status = 0;
  bool at_once = false;  // with the worker's first read, not after time-outs
};

class ReadTest : public ManagerTest, public testing::WithParamInterface<ReadCase> {};

TEST_P(ReadTest, IsRecordedAndReadingGoesOn) {
  const ReadCase& row = GetParam();
  const auto complete = [&] { visa_.CompleteData(row.block, 'A', row.header_status); };
  Open();
  if (row.at_once) complete();
  StartMeasuring();
  if (!row.at_once) complete();
  if (row.outcome == Outcome::kKept) {
    EXPECT_TRUE(WaitForBlock());
    EXPECT_EQ(trace_.ColumnCount(), 1);
  } else {
    ASSERT_TRUE(WaitUntilRequested("6", row.at_once ? 0 : 1));
  }
  EXPECT_EQ(manager_.FetchData(trace_), Status::kVisaTimeout) << "each block once";
  visa_.CompleteData(Block(7));
  EXPECT_TRUE(WaitForBlock()) << "reading goes on";
  EXPECT_EQ(trace_.ColumnCount(), 7);
  EXPECT_THAT(ErrorRecords(), testing::ElementsAreArray(row.trail));
  if (!row.at_once) {
    const std::size_t recoveries = row.outcome == Outcome::kRecovered ? 1 : 0;
    EXPECT_EQ(Requested("1"), recoveries);
    EXPECT_EQ(visa_.Calls(Function::kClear).size(), recoveries);
  }
}

using enum Outcome;
const std::vector<ReadCase> kReadCases = {
    {"Block", Block(1), kKept},
    {"Empty", {}, kDropped},
    {"OneByteTooMany", Bytes(15), kDropped},
    {"RefusedAtOnce", Block(1), kRecovered, {{kRefusalStatus, Site{445}}}, kRefusal, true},
    {"RefusedLater", Block(1), kRecovered, {{kRefusalStatus, Site{452}}}, kRefusal},
    {"NegativeWordOfTheBlock", Block(1, kRefusal), kRecovered, {{kRefusalStatus, Site{452}}}},
    {"NoticeInsteadOfABlock", Block(1), kRecovered, {}, 6},
    {"NoticeWithABlock", Block(1, 6), kKept},
    {"BlockWithAnUnknownWord", Block(1, 7), kKept, {{Status{7}, Site{467}}}},
};
INSTANTIATE_TEST_SUITE_P(Reads, ReadTest, testing::ValuesIn(kReadCases), RowName());

/// While the worker measures, the state comes from what it reads. A level that is not settled shows
/// until the next read that says otherwise, so blocks that say so keep coming.
TEST_F(ManagerTest, StateFollowsTheBlocks) {
  OpenAndMeasure();
  const auto shows = [this](std::uint16_t word, StatusAnd<bool> (M::*get)(), bool wanted) {
    return WaitUntil([&, blocks = 0]() mutable {
      if (blocks++ % 8 == 0) visa_.CompleteData(Block(1, word));
      return State(get) == wanted;
    });
  };
  EXPECT_TRUE(shows(6, &M::GetLevelState, false));
  EXPECT_TRUE(shows(0, &M::GetLevelState, true));
  EXPECT_TRUE(shows(0x8007, &M::GetPllState, false));
  EXPECT_TRUE(shows(0, &M::GetPllState, true));
  EXPECT_TRUE(State(&M::GetErgState));
  EXPECT_EQ(Requested("4:0/40x3"), 0U) << "nothing was asked";
}

/// However often it is asked for meanwhile.
TEST_F(ManagerTest, EachErgFaultIsToldOnceToCallersOnManyThreads) {
  constexpr int kFaults = 100;
  OpenAndMeasure();
  std::atomic<int> told = 0;
  std::atomic<bool> done = false;
  const auto call = [&] {
    while (!done) {
      if (!State(&M::GetErgState)) ++told;
    }
  };
  const std::array<std::jthread, 2> callers{std::jthread(call), std::jthread(call)};
  for (int fault = 1; fault <= kFaults && !HasFailure(); ++fault) {
    visa_.CompleteData(Block(1, 0x801C));
    EXPECT_TRUE(WaitUntil([&] { return told >= fault; })) << "fault " << fault << " is lost";
    EXPECT_LE(told, fault) << "told twice";
  }
  done = true;
}

TEST_F(ManagerTest, StateIsAskedForWhileNothingIsMeasured) {
  Open();
  visa_.Rule(kRead, kFrequencyId, 0x8007, 0, 1);
  EXPECT_FALSE(State(&M::GetPllState));
  visa_.Rule(kRead, kFrequencyId, 0x801C, 0, 1);
  EXPECT_FALSE(State(&M::GetErgState));
  visa_.Rule(kRead, kPowerId, 6, 0, 1);
  EXPECT_FALSE(State(&M::GetLevelState));
  visa_.RuleBody(kRead, kButtonId, Body(kButtonId, 0x20, {1}), 0, 1);
  EXPECT_TRUE(State(&M::GetRfButton));
  EXPECT_THAT(visa_.RequestOrder(), testing::IsSupersetOf({"4:0/40x3", "4:79/62x5", "4:34/20x1"}));
  StartMeasuring();
  EXPECT_TRUE(State(&M::GetErgState)) << "told twice";
}

/// Before the next block, or when a stop comes, once more than 900 ms have passed.
TEST_F(ManagerTest, WorkerAsksForTheButtonNowAndThen) {
  constexpr std::uint32_t kPeriod = 900;
  constexpr const char* kButtonRead = "4:34/20x1";
  Open();
  visa_.RuleBody(kRead, kButtonId, Body(kButtonId, 0x20, {1}));
  visa_.Rule(kRead, kButtonId, kRefusal, 0, 1);
  StartMeasuring();
  os::Sleep(std::chrono::milliseconds(kPeriod + 50));
  const std::uint32_t start = os::TickCount();
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  ASSERT_TRUE(WaitUntilRequested("6", 1));
  EXPECT_THAT(visa_.RequestOrder(), ElementsAre("1", kButtonRead, "1", "3:5/40x2", "6"));
  EXPECT_GE(visa_.Calls(Function::kClear).size(), 1U);
  EXPECT_TRUE(WaitUntil([this] {
    visa_.CompleteData(Block(1));
    return manager_.GetRfButton().value;
  }));
  const std::size_t reads = Requested("6");
  for (int block = 0; block < 2; ++block) visa_.CompleteData(Block(1));
  EXPECT_TRUE(WaitUntilRequested("6", reads + 2)) << "the button is not asked for each time";
  EXPECT_GE(os::TickCount() - start, kPeriod * (Requested(kButtonRead) - 1));
  EXPECT_THAT(ErrorRecords(), ElementsAre(ErrorRecord{kRefusalStatus, Site{492}}));
}

TEST_F(ManagerTest, SoftwareTriggerReadsOneSweep) {
  Open();
  ASSERT_EQ(manager_.SetSweepMode(SweepMode::kList), 0);
  for (int points = 1; points <= 50; ++points) {  // each as soon as it may come
    manager_.RequestSoftwareTrigger();
    visa_.CompleteData(Block(points));
    ASSERT_TRUE(WaitForBlock());
    EXPECT_EQ(trace_.ColumnCount(), points);
  }
  manager_.RequestSoftwareTrigger();
  ASSERT_TRUE(WaitUntilRequested("6", 51));
  manager_.RequestSoftwareTrigger();  // gives up the sweep of the one before
  visa_.CompleteData(Block(2));
  ASSERT_TRUE(WaitForBlock());
  ASSERT_TRUE(WaitUntil([this] { return !IsMeasuring(); })) << "by itself";
  visa_.ClearRecord();
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  EXPECT_THAT(visa_.RequestOrder(), ElementsAre("3:5/40x2")) << "nothing to give up or resume";

  manager_.RequestSoftwareTrigger();
  ASSERT_TRUE(WaitUntilRequested("6", 1));
  EXPECT_EQ(manager_.SetDwell(1.0), 0);
  EXPECT_FALSE(IsMeasuring()) << "a setting gives it up, too";
}

TEST_F(ManagerTest, CallersOnManyThreadsWhileTheWorkerMeasures) {
  constexpr int kRounds = 40;
  OpenAndMeasure();
  std::atomic<int> traces = 0;
  std::atomic<bool> done = false;
  const auto set = [&] {
    for (int i = 0; i < kRounds; ++i) {
      EXPECT_EQ(manager_.SetFrequency(1e9 + i), 0);
      EXPECT_EQ(manager_.SetDwell(i), 0);
      EXPECT_EQ(manager_.SetPulseWidth(i), 0);
      EXPECT_EQ(manager_.SetChannelOffset(0, i), 0);
    }
    done = true;
  };
  const auto trigger = [&] {
    for (int i = 0; i < kRounds; ++i) EXPECT_EQ(TriggerImmediately(manager_), 0);
  };
  const auto ask = [&] {
    while (!done) {
      EXPECT_EQ(manager_.GetLevelState().status, 0);
      EXPECT_GE(manager_.GetFrequency(), 1e7);
      EXPECT_EQ(TakeError().first, 0);
      std::this_thread::yield();
    }
  };
  const auto fetch = [&] {
    for (TraceMatrix trace; !done; os::Sleep(std::chrono::milliseconds(1))) {
      visa_.CompleteData(Block(4));
      const Status result = manager_.FetchData(trace);
      EXPECT_TRUE(result == Status::kOk ? trace.ColumnCount() == 4
                                        : result == Status::kVisaTimeout);
      if (result == Status::kOk) ++traces;
    }
  };
  {
    const std::array<std::jthread, 5> callers{std::jthread(set), std::jthread(trigger),
                                              std::jthread(ask), std::jthread(fetch),
                                              std::jthread(fetch)};
  }
  visa_.CompleteData(Block(4));
  EXPECT_TRUE(traces > 0 || WaitForBlock());
  EXPECT_EQ(manager_.GetFrequency(), 1e9 + kRounds - 1);
  EXPECT_TRUE(ErrorRecords().empty());
}

TEST_F(ManagerTest, ErrorTextsWhileTheWorkerReads) {
  OpenAndMeasure();
  visa_.SetResult(Function::kRead, 0xBFFF00A6, 20);
  int texts = 0;
  ASSERT_TRUE(WaitUntil([&] {
    const auto [code, text] = TakeError();
    EXPECT_TRUE(code == 0 || text == "text of BF FF 00 A6");
    texts += code != 0 ? 1 : 0;
    return texts >= 5;
  }));
}

}  // namespace
