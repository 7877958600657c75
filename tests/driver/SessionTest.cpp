// Sessions as a whole: opening, measuring, losing the instrument, closing.
#include <gmock/gmock.h>

#include "tests/driver/MemberWalk.h"
#include "tests/driver/ProcessResources.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

class Session : public SessionTest {};

TEST_F(Session, ASecondInitializeTakesTheFirstOnesPlace) {
  simulator::Simulator other;
  other.Start();
  Open();
  EXPECT_EQ(surface_.rf->put_OutputEnabled(VARIANT_TRUE), S_OK);
  EXPECT_EQ(surface_.root->Initialize(Text(other.ResourceName()).Get(), VARIANT_FALSE,
                                      VARIANT_FALSE, nullptr),
            S_OK);
  EXPECT_TRUE(WaitUntil([&] { return instrument_.ConnectionCount() == 0; }));
  EXPECT_FALSE(instrument_.State().output_enabled) << "switched off at the end of its session";
  EXPECT_EQ(other.ConnectionCount(), 1u);
  EXPECT_EQ(surface_.rf->put_Frequency(3e9), S_OK);
  EXPECT_EQ(other.State().frequency.start, 3e9);
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(surface_.root->Close(), S_OK);
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(18))
      << "the instrument's time to settle";
  EXPECT_TRUE(WaitUntil([&] { return other.ConnectionCount() == 0; }));
}

TEST_F(Session, IsOpenedOnNoInstrumentThatStartsOtherThanWithZero) {
  const auto expect_unknown = [&] {
    ExpectReported(Initialize(), Code(0x80047060),
                   "ZentrelK4NLib: Unknown resource " + instrument_.ResourceName() + ".",
                   __uuidof(IIviDriver));
    EXPECT_FALSE(IsOpen());
    EXPECT_TRUE(WaitUntil([&] { return instrument_.ConnectionCount() == 0; }));
  };
  instrument_.InjectFault(RefuseCommand(1, -32766));
  expect_unknown();
  instrument_.ClearFaults();
  os::Module protocol_library;  // whose session opens with a notice
  ASSERT_TRUE(protocol_library.Load(ZK_PROTOCOL_REFUSES));
  expect_unknown();
  protocol_library.Unload();

  for (const auto flag : std::initializer_list<VARIANT_BOOL>{1, 2, -1, 0x100}) {
    EXPECT_EQ(Initialize(flag, flag), Code(0x00047065)) << flag;
    EXPECT_EQ(Initialize(VARIANT_FALSE, flag), Code(0x00047066)) << flag;
  }
  Open();
}

// A client that goes on as if nothing had happened.
constexpr std::pair<std::string_view, double> kLaterCalls[] = {{"RF.put Frequency", 1e9},
                                                               {"RF.put OutputEnabled", 1},
                                                               {"FrequencyStep.put Dwell", 1e-3},
                                                               {"Acquisition.put Averaging", 2},
                                                               {"Sweep.put Mode", 4}};

TEST_F(Session, EndsAndBeginsAgainAfterALossInTheMiddleOfASweep) {
  const simulator::Fault silence{.kind = simulator::FaultKind::kSilence};
  for (const bool is_cut : {true, false}) {
    SCOPED_TRACE(is_cut ? "The link is cut" : "The instrument falls silent");
    Open();
    StartSweep(1e9, 2e9, 1e7);
    EXPECT_TRUE(WaitUntil([&] { return instrument_.Requests().back().command == kDataCommand; }));
    is_cut ? instrument_.Stop() : instrument_.InjectFault(silence);

    // A silent instrument costs each of them its time-outs.
    for (const auto& [name, value] :
         std::span(kLaterCalls).first(is_cut ? std::size(kLaterCalls) : 1)) {
      EXPECT_LT(Call(surface_, MemberOf(name), {&value, 1}).result, 0) << name;
    }
    EXPECT_EQ(NumberOf(surface_, "RF.get Frequency"), 1e9) << "getters answer from what is known";
    BSTR text = nullptr;
    EXPECT_EQ(surface_.utility->ErrorQuery(&surface_.integer, &text), S_OK);
    EXPECT_EQ(static_cast<std::uint32_t>(surface_.integer) & 0xFFFF0000, 0xBFFF0000U);
    EXPECT_THAT(TakeText(text), testing::Not(testing::IsEmpty())) << "VISA's own text";
    EXPECT_EQ(surface_.root->Close(), S_OK);
    EXPECT_FALSE(IsOpen());

    is_cut ? instrument_.Start() : instrument_.ClearFaults();
    OpenToMeasure();
    ExpectMeasures();
  }
}

class ManySessions : public SessionTest {
 protected:
  ManySessions() : SessionTest({.log_capacity = 1}) {}

  void OpenAndClose(std::size_t times) {
    for (std::size_t i = 0; i < times; ++i) {
      Open();
      EXPECT_EQ(surface_.rf->put_Frequency(1e9), S_OK);
      EXPECT_EQ(surface_.root->Close(), S_OK);
    }
    EXPECT_TRUE(WaitUntil([&] { return instrument_.ConnectionCount() == 0; }));
  }
};

TEST_F(ManySessions, LeaveNothingBehind) {
  constexpr std::size_t kSessions = 100;
  OpenAndClose(5);
  const ProcessResources before = CountResources();
  OpenAndClose(kSessions);
  const ProcessResources after = CountResources();
  EXPECT_EQ(after.threads, before.threads);
  EXPECT_EQ(after.handles, before.handles);
  EXPECT_LT(after.memory, before.memory + kSessions * 100) << "less than 100 bytes a session";
}

}  // namespace
}  // namespace driver_test
