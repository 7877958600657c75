// Sessions as a whole: opening, measuring, losing the instrument, closing.
#include <gmock/gmock.h>

#include "tests/driver/ProcessResources.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

using simulator::Fault;
using simulator::FaultKind;

constexpr std::uint16_t kDataCommand = 6;

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

// No code page has all these letters.
TEST_F(Session, FindsTheLibraryBesideADriverInAFolderOfAnyName) {
  DriverModule driver(Company::kVisaLibrary, u"_\u00FC\u0434\u6E2C");
  surface_ = Surface(driver);
  Open();
  EXPECT_TRUE(IsOpen());
  surface_ = Surface(ModuleWithVisa());  // before its code goes
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
using OnSurface = HRESULT (*)(Surface&);
constexpr OnSurface kLaterCalls[] = {
    [](Surface& s) { return s.rf->put_Frequency(1e9); },
    [](Surface& s) { return s.rf->put_OutputEnabled(VARIANT_TRUE); },
    [](Surface& s) { return s.frequency_step->put_Dwell(1e-3); },
    [](Surface& s) { return s.acquisition->put_Averaging(2); },
    [](Surface& s) { return s.sweep->put_Mode(ZentrelK4NSweepModePowerStep); },
};

struct Loss {
  const char* name;
  void (*lose)(simulator::Simulator&);
  void (*recover)(simulator::Simulator&);
  std::size_t calls;  // a silent instrument costs each of them its time-outs
};
constexpr Loss kLosses[] = {
    {"The link is cut", [](simulator::Simulator& i) { i.Stop(); },
     [](simulator::Simulator& i) { i.Start(); }, std::size(kLaterCalls)},
    {"The instrument falls silent",
     [](simulator::Simulator& i) {
       Fault silence;
       silence.kind = FaultKind::kSilence;
       i.InjectFault(silence);
     },
     [](simulator::Simulator& i) { i.ClearFaults(); }, 1},
};

TEST_F(Session, EndsAndBeginsAgainAfterALossInTheMiddleOfASweep) {
  for (const auto& loss : kLosses) {
    SCOPED_TRACE(loss.name);
    Open();
    StartSweep(1e9, 2e9, 1e7);
    EXPECT_TRUE(WaitUntil([&] {
      const auto requests = instrument_.Requests();
      return !requests.empty() && requests.back().command == kDataCommand;
    }));
    loss.lose(instrument_);

    for (std::size_t i = 0; i < loss.calls; ++i) EXPECT_LT(kLaterCalls[i](surface_), 0) << i;
    double frequency = 0.0;
    EXPECT_EQ(surface_.rf->get_Frequency(&frequency), S_OK);
    EXPECT_EQ(frequency, 1e9) << "getters answer from what the driver knows";
    BSTR text = nullptr;
    EXPECT_EQ(surface_.utility->ErrorQuery(&surface_.integer, &text), S_OK);
    EXPECT_EQ(static_cast<std::uint32_t>(surface_.integer) & 0xFFFF0000, 0xBFFF0000U);
    EXPECT_THAT(TakeText(text), testing::Not(testing::IsEmpty())) << "VISA's own text";
    EXPECT_EQ(surface_.root->Close(), S_OK);
    EXPECT_FALSE(IsOpen());

    loss.recover(instrument_);
    instrument_.ClearRequests();
    OpenToMeasure();
    ExpectMeasures();
  }
}

class ManySessions : public SessionTest {
 protected:
  static simulator::Options ShortMemory() {
    simulator::Options options;
    options.log_capacity = 1;
    return options;
  }
  ManySessions() : SessionTest(ShortMemory()) {}

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
