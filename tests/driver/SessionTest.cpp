// Sessions as a whole: opening, measuring, losing the instrument, closing.
#include <gmock/gmock.h>

#include <atomic>

#include "tests/driver/ProcessResources.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

using simulator::Fault;
using simulator::FaultKind;

constexpr std::uint16_t kRecoverCommand = 1;
constexpr std::uint16_t kDataCommand = 6;
constexpr double kLevel = -5.0;

class Session : public SessionTest {};

struct OpenRow {
  const char* name;
  VARIANT_BOOL id_query;
  VARIANT_BOOL reset;
  HRESULT expected;
};
constexpr OpenRow kOpenRows[] = {
    {"Plain", VARIANT_FALSE, VARIANT_FALSE, S_OK},
    {"IdQuery", VARIANT_TRUE, VARIANT_FALSE, 0x00047065},
    {"Reset", VARIANT_FALSE, VARIANT_TRUE, 0x00047066},
    {"IdQueryGoesFirst", 1, 1, 0x00047065},
};

TEST_F(Session, WarnsOfWhatInitializeDoesNotDo) {
  for (const auto& row : kOpenRows) {
    EXPECT_EQ(Initialize(row.id_query, row.reset), row.expected) << row.name;
    EXPECT_EQ(surface_.root->get_Initialized(&surface_.flag), S_OK);
    EXPECT_EQ(surface_.flag, 1) << "not VARIANT_TRUE";
    EXPECT_EQ(surface_.root->Close(), S_OK) << row.name;
    EXPECT_FALSE(IsOpen());
  }
  ExpectReported(surface_.root->Close(), kNotConnectedCode, kNotConnected, __uuidof(IIviDriver));
}

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
  EXPECT_EQ(surface_.root->Close(), S_OK);
  EXPECT_TRUE(WaitUntil([&] { return other.ConnectionCount() == 0; }));
}

TEST_F(Session, IsExclusive) {
  Open();
  Surface second(ModuleWithVisa());
  ExpectReported(second.root->Initialize(Text(instrument_.ResourceName()).Get(), VARIANT_FALSE,
                                         VARIANT_FALSE, nullptr),
                 Code(0x80047060),
                 "ZentrelK4NLib: Unknown resource " + instrument_.ResourceName() + ".",
                 __uuidof(IIviDriver));
  EXPECT_EQ(surface_.rf->put_Frequency(3e9), S_OK) << "the first one keeps working";
}

TEST_F(Session, IsNotOpenedOnAnInstrumentThatCannotStart) {
  Fault refusal;
  refusal.kind = FaultKind::kRefuse;
  refusal.command = kRecoverCommand;
  refusal.status = -32766;
  instrument_.InjectFault(refusal);
  ExpectReported(Initialize(), Code(0x80047060),
                 "ZentrelK4NLib: Unknown resource " + instrument_.ResourceName() + ".",
                 __uuidof(IIviDriver));
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(WaitUntil([&] { return instrument_.ConnectionCount() == 0; }));
  instrument_.ClearFaults();
  Open();
}

TEST_F(Session, MeasuresTheDeviceAtEveryPointOfManySweeps) {
  Open();
  LoadDetectors();
  EXPECT_EQ(surface_.rf->put_Level(kLevel), S_OK);
  // 10,001 points: the most that one block holds, and the rest.
  constexpr double kStart = 1.5e9;
  constexpr double kStep = 200e3;
  constexpr int kLongest = 5461;
  RunSweep(kStart, kStart + (kLongest - 1) * kStep, kStep);
  ExpectResponse(kLevel, kLongest);
  RunSweep(kStart + kLongest * kStep, kStart + 10000 * kStep, kStep);
  ExpectResponse(kLevel, 10001 - kLongest);
  EXPECT_THAT(TakeErrors(), testing::IsEmpty());
  EXPECT_EQ(surface_.root->Close(), S_OK);
  EXPECT_FALSE(instrument_.State().output_enabled);
}

// A client that goes on as if nothing had happened.
using Call = HRESULT (*)(Surface&);
constexpr Call kLaterCalls[] = {
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
    // Nobody pulls the trigger: the sweep lasts for ever.
    EXPECT_EQ(surface_.sweep->Configure(ZentrelK4NSweepModeFrequencyStep,
                                        ZentrelK4NSweepTriggerSourceExternal),
              S_OK);
    EXPECT_EQ(surface_.frequency_step->put_Start(1e9), S_OK);
    EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
    EXPECT_TRUE(WaitUntil([&] {
      const auto requests = instrument_.Requests();
      return !requests.empty() && requests.back().command == kDataCommand;
    }));
    loss.lose(instrument_);

    for (std::size_t i = 0; i < loss.calls; ++i) {
      EXPECT_LT(kLaterCalls[i](surface_), 0) << i;
    }
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
    Open();
    LoadDetectors();
    EXPECT_EQ(surface_.rf->put_Level(kLevel), S_OK);
    RunSweep(2e9, 2.8e9, 1e7);
    ExpectResponse(kLevel, 81);
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

TEST_F(Session, ServesTwoThreadsAtOnce) {
  Open();
  LoadDetectors();
  EXPECT_EQ(surface_.rf->put_Level(kLevel), S_OK);
  std::atomic<bool> done = false;
  std::thread settings([&] {
    double value = 0.0;
    for (int i = 0; !done; ++i) {
      EXPECT_EQ(surface_.rf->put_Frequency(1e9 + i), S_OK);
      EXPECT_EQ(surface_.rf->get_Frequency(&value), S_OK);
      EXPECT_EQ(value, 1e9 + i);
      EXPECT_EQ(surface_.power_step->put_Start(-20.0), S_OK);
      ExpectReported(surface_.power_step->Reset(), kMethodCode,
                     "ZentrelK4NLib: Does not support this class-compliant feature: method Reset.",
                     __uuidof(IZentrelK4NPowerStep));
      LONG code = 0;
      BSTR text = nullptr;
      EXPECT_EQ(surface_.utility->ErrorQuery(&code, &text), S_OK);
      SysFreeString(text);
    }
  });
  int traces = 0;
  for (int i = 0; i < 20; ++i) {
    surface_.acquisition->Initiate();
    auto status = ZentrelK4NAcquisitionStatusInProgress;
    EXPECT_EQ(surface_.acquisition->get_Status(&status), S_OK);
    SAFEARRAY* array = nullptr;
    double x = 0.0;
    double increment = 0.0;
    if (Channel("ChannelA")->FetchData(&array, &x, &increment) == S_OK && array != nullptr) {
      ++traces;
      SafeArrayDestroy(array);
    }
  }
  done = true;
  settings.join();
  EXPECT_THAT(TakeErrors(), testing::IsEmpty());
}

}  // namespace
}  // namespace driver_test
