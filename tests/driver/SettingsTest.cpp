// The settings of an open session: what reaches the instrument, what reads back, and what clients
// hear of a refusal.
#include <gmock/gmock.h>

#include <cmath>

#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

using simulator::Fault;
using State = const simulator::InstrumentState;
using testing::ElementsAre;

class Settings : public SessionTest {
 protected:
  void SetUp() override { Open(); }
};

struct PutGet {
  const char* name;
  HRESULT (*put)(Surface&);
  double (*get)(Surface&);
  double reads;
  double (*instrument)(State&);
  double holds;
};

// What an out parameter holds after a call that must succeed.
template <typename Interface, typename Value>
double Get(const ComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(Value*)) {
  Value value{};
  EXPECT_EQ((object.Get()->*get)(&value), S_OK);
  return static_cast<double>(value);
}

template <typename Number>
double Num(Number value) {
  return static_cast<double>(value);
}

// clang-format off
using Rf = IZentrelK4NRF;
using Sweep = IZentrelK4NSweep;
using FStep = IZentrelK4NFrequencyStep;
using PStep = IZentrelK4NPowerStep;
using System = IZentrelK4NSystem;
using PulseModulation = IZentrelK4NPulseModulation;
using TriggerOutput = IZentrelK4NTriggerOutput;
using SyncGenerator = IZentrelK4NSyncGenerator;
template <typename Enum>
Enum Any(int value) { return static_cast<Enum>(value); }

// One after the other on one session.
const PutGet kPutGet[] = {
    {"Frequency", [](Surface& s) { return s.rf->put_Frequency(2.4e9); }, [](Surface& s) { return Get(s.rf, &Rf::get_Frequency); }, 2.4e9, [](State& i) { return i.frequency.start; }, 2.4e9},
    {"Frequency beyond the instrument's", [](Surface& s) { return s.rf->put_Frequency(30e9); }, [](Surface& s) { return Get(s.rf, &Rf::get_Frequency); }, 20e9, [](State& i) { return i.frequency.start; }, 20e9},
    {"Level", [](Surface& s) { return s.rf->put_Level(-12.5); }, [](Surface& s) { return Get(s.rf, &Rf::get_Level); }, -12.5, [](State& i) { return i.level.start; }, -12.5},
    {"Configure sets the frequency", [](Surface& s) { return s.rf->Configure(1e9, -3.0); }, [](Surface& s) { return Get(s.rf, &Rf::get_Frequency); }, 1e9, [](State& i) { return i.level.start; }, -3.0},
    {"Output reads 1 for true", [](Surface& s) { return s.rf->put_OutputEnabled(VARIANT_TRUE); }, [](Surface& s) { return Get(s.rf, &Rf::get_OutputEnabled); }, 1, [](State& i) { return Num(i.output_enabled); }, 1},
    {"Output off", [](Surface& s) { return s.rf->put_OutputEnabled(VARIANT_FALSE); }, [](Surface& s) { return Get(s.rf, &Rf::get_OutputEnabled); }, 0, [](State& i) { return Num(i.output_enabled); }, 0},

    {"Step size of ConfigureStartStop", [](Surface& s) { return s.frequency_step->ConfigureStartStop(1e9, 2e9, ZentrelK4NFrequencyStepScalingLinear, 1e7); }, [](Surface& s) { return Get(s.frequency_step, &FStep::get_Size); }, 1e7, [](State& i) { return i.frequency.start; }, 1e9},
    {"Only the low byte of the mode counts", [](Surface& s) { return s.sweep->put_Mode(Any<ZentrelK4NSweepModeEnum>(259)); }, [](Surface& s) { return Get(s.sweep, &Sweep::get_Mode); }, ZentrelK4NSweepModeFrequencyStep, [](State& i) { return Num(i.frequency.points); }, 101},
    {"FrequencyStep start", [](Surface& s) { return s.frequency_step->put_Start(1.5e9); }, [](Surface& s) { return Get(s.frequency_step, &FStep::get_Start); }, 1.5e9, [](State& i) { return Num(i.frequency.points); }, 51},
    {"FrequencyStep stop", [](Surface& s) { return s.frequency_step->put_Stop(1.6e9); }, [](Surface& s) { return Get(s.frequency_step, &FStep::get_Stop); }, 1.6e9, [](State& i) { return Num(i.frequency.points); }, 11},
    {"Linear scaling is taken", [](Surface& s) { return s.frequency_step->put_Scaling(ZentrelK4NFrequencyStepScalingLinear); }, [](Surface& s) { return Get(s.frequency_step, &FStep::get_Scaling); }, 0, [](State& i) { return Num(i.frequency.points); }, 11},
    {"Power step mode", [](Surface& s) { return s.sweep->put_Mode(ZentrelK4NSweepModePowerStep); }, [](Surface& s) { return Get(s.sweep, &Sweep::get_Mode); }, ZentrelK4NSweepModePowerStep, [](State& i) { return Num(i.level.points); }, 11},
    {"PowerStep ConfigureStartStop", [](Surface& s) { return s.power_step->ConfigureStartStop(-20, 0, 2); }, [](Surface& s) { return Get(s.power_step, &PStep::get_Start); }, -20, [](State& i) { return Num(i.level.points); }, 11},
    {"PowerStep start", [](Surface& s) { return s.power_step->put_Start(-10); }, [](Surface& s) { return Get(s.power_step, &PStep::get_Start); }, -10, [](State& i) { return Num(i.level.points); }, 6},
    {"PowerStep stop", [](Surface& s) { return s.power_step->put_Stop(-2); }, [](Surface& s) { return Get(s.power_step, &PStep::get_Stop); }, -2, [](State& i) { return Num(i.level.points); }, 5},
    {"PowerStep size", [](Surface& s) { return s.power_step->put_Size(4); }, [](Surface& s) { return Get(s.power_step, &PStep::get_Size); }, 4, [](State& i) { return Num(i.level.points); }, 3},
    {"One dwell for all sweeps, in seconds", [](Surface& s) { return s.power_step->put_Dwell(0.5); }, [](Surface& s) { return Get(s.frequency_step, &FStep::get_Dwell); }, 0.5, [](State& i) { return Num(i.dwell); }, 5e8},
    {"Dwell of the frequency step", [](Surface& s) { return s.frequency_step->put_Dwell(1e-3); }, [](Surface& s) { return Get(s.power_step, &PStep::get_Dwell); }, 1e-3, [](State& i) { return Num(i.dwell); }, 1e6},

    {"A software source runs freely", [](Surface& s) { return s.sweep->Configure(ZentrelK4NSweepModeNone, ZentrelK4NSweepTriggerSourceSoftware); }, [](Surface& s) { return Get(s.sweep, &Sweep::get_TriggerSource); }, ZentrelK4NSweepTriggerSourceSoftware, [](State& i) { return Num(i.trigger_input[0].code); }, 0},
    {"External source, by its low byte", [](Surface& s) { return s.sweep->put_TriggerSource(Any<ZentrelK4NSweepTriggerSourceEnum>(257)); }, [](Surface& s) { return Get(s.sweep, &Sweep::get_TriggerSource); }, ZentrelK4NSweepTriggerSourceExternal, [](State& i) { return Num(i.trigger_input[0].code); }, 1},
    {"Single step reads 1 for true", [](Surface& s) { return s.frequency_step->put_SingleStepEnabled(VARIANT_TRUE); }, [](Surface& s) { return Get(s.power_step, &PStep::get_SingleStepEnabled); }, 1, [](State& i) { return Num(i.trigger_input[0].code); }, 2},
    {"Action measure", [](Surface& s) { return s.sweep->put_TriggerAction(ZentrelK4NSweepTriggerActionMeasure); }, [](Surface& s) { return Get(s.sweep, &Sweep::get_TriggerAction); }, ZentrelK4NSweepTriggerActionMeasure, [](State& i) { return Num(i.trigger_input[0].code); }, 3},
    {"Software source is silently not taken with single step", [](Surface& s) { return s.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceSoftware); }, [](Surface& s) { return Get(s.sweep, &Sweep::get_TriggerSource); }, ZentrelK4NSweepTriggerSourceExternal, [](State& i) { return Num(i.trigger_input[0].code); }, 3},
    {"Every other action means switch", [](Surface& s) { return s.sweep->put_TriggerAction(Any<ZentrelK4NSweepTriggerActionEnum>(5)); }, [](Surface& s) { return Get(s.sweep, &Sweep::get_TriggerAction); }, ZentrelK4NSweepTriggerActionSwitch, [](State& i) { return Num(i.trigger_input[0].code); }, 2},
    {"Every edge but rise is fall", [](Surface& s) { return s.system->put_SyncSourceDetection(Any<ZentrelK4NSystemSyncSourceDetectorEnum>(5)); }, [](Surface& s) { return Get(s.system, &System::get_SyncSourceDetection); }, ZentrelK4NSystemSyncSourceDetectorFall, [](State& i) { return Num(i.trigger_input[0].edge); }, 1},
    {"Power step's single step off", [](Surface& s) { return s.power_step->put_SingleStepEnabled(VARIANT_FALSE); }, [](Surface& s) { return Get(s.frequency_step, &FStep::get_SingleStepEnabled); }, 0, [](State& i) { return Num(i.trigger_input[0].code); }, 1},

    {"Averaging", [](Surface& s) { return s.acquisition->put_Averaging(5); }, [](Surface& s) { return Get(s.acquisition, &IZentrelK4NAcquisition::get_Averaging); }, 5, [](State& i) { return Num(i.averaging); }, 5},
    {"Averaging beyond the instrument's", [](Surface& s) { return s.acquisition->put_Averaging(99); }, [](Surface& s) { return Get(s.acquisition, &IZentrelK4NAcquisition::get_Averaging); }, 14, [](State& i) { return Num(i.averaging); }, 14},
    {"Pulse modulation reads -1 for true", [](Surface& s) { return s.pulse_modulation->put_Enabled(1); }, [](Surface& s) { return Get(s.pulse_modulation, &PulseModulation::get_Enabled); }, -1, [](State& i) { return Num(i.pulses.mode); }, 2},
    {"Polarity of pulse modulation", [](Surface& s) { return s.pulse_modulation->put_ExternalPolarity(ZentrelK4NPulseModulationExternalPolarityInverse); }, [](Surface& s) { return Get(s.pulse_modulation, &PulseModulation::get_ExternalPolarity); }, 1, [](State& i) { return Num(i.pulses.inverse); }, 1},
    {"Every other modulation source means internal", [](Surface& s) { return s.pulse_modulation->put_Source(Any<ZentrelK4NPulseModulationSourceEnum>(2)); }, [](Surface& s) { return Get(s.pulse_modulation, &PulseModulation::get_Source); }, 0, [](State& i) { return Num(i.pulses.source); }, 3},
    {"All modulation off", [](Surface& s) { return s.rf->DisableAllModulation(); }, [](Surface& s) { return Get(s.pulse_modulation, &PulseModulation::get_Enabled); }, 0, [](State& i) { return Num(i.pulses.mode); }, 0},
    {"Trigger output's width in whole microseconds", [](Surface& s) { return s.trigger_output->put_Width(2.96e-6); }, [](Surface& s) { return Get(s.trigger_output, &TriggerOutput::get_Width); }, 3e-6, [](State& i) { return Num(i.trigger_output[0].width); }, 3},
    {"Trigger output on reads 1; switched off it had lost its mode", [](Surface& s) { return s.trigger_output->put_Enabled(VARIANT_TRUE); }, [](Surface& s) { return Get(s.trigger_output, &TriggerOutput::get_Enabled); }, 1, [](State& i) { return Num(i.trigger_output[0].code); }, 0},
    {"Trigger output mode", [](Surface& s) { return s.trigger_output->put_Mode(ZentrelK4NTriggerOutputModeInput); }, [](Surface& s) { return Get(s.trigger_output, &TriggerOutput::get_Mode); }, ZentrelK4NTriggerOutputModeInput, [](State& i) { return Num(i.trigger_output[0].code); }, 4},
    {"Unlisted mode sends the present one", [](Surface& s) { return s.trigger_output->put_Mode(Any<ZentrelK4NTriggerOutputModeEnum>(7)); }, [](Surface& s) { return Get(s.trigger_output, &TriggerOutput::get_Mode); }, ZentrelK4NTriggerOutputModeInput, [](State& i) { return Num(i.trigger_output[0].code); }, 4},
    {"Sync generator's width", [](Surface& s) { return s.sync_generator->put_Width(2e-6); }, [](Surface& s) { return Get(s.sync_generator, &SyncGenerator::get_Period); }, 2e-6, [](State& i) { return Num(i.sync_width); }, 2000},
    {"Attenuator mode", [](Surface& s) { return s.system->put_Atten(ZentrelK4NSystemAttenCare); }, [](Surface& s) { return Get(s.system, &System::get_Atten); }, ZentrelK4NSystemAttenCare, [](State& i) { return Num(i.attenuator_mode); }, 5},
    {"Reference frequency in hertz", [](Surface& s) { return s.system->put_ExtRefGenFrequency(5e6); }, [](Surface& s) { return Get(s.system, &System::get_ExtRefGenFrequency); }, 5e6, [](State& i) { return i.reference_frequency; }, 5e6},
    {"Reference on reads 1", [](Surface& s) { return s.system->put_ExtRefGenEnabled(VARIANT_TRUE); }, [](Surface& s) { return Get(s.system, &System::get_ExtRefGenEnabled); }, 1, [](State& i) { return Num(i.reference_enabled); }, 1},
    {"Phase delay", [](Surface& s) { return s.system->put_ExtRefPhaseDelay(-7); }, [](Surface& s) { return Get(s.system, &System::get_ExtRefPhaseDelay); }, -7, [](State& i) { return i.phase_delay; }, -7},
    {"Any compensation mode goes to the instrument", [](Surface& s) { return s.system->put_CompensMode(Any<ZentrelK4NSystemCompensModeEnum>(4)); }, [](Surface& s) { return Get(s.system, &System::get_CompensMode); }, 4, [](State& i) { return Num(i.compensation_mode); }, 4},
    {"External power control takes the trigger, and reads false", [](Surface& s) { return s.system->put_ExtPwrCtrl(VARIANT_TRUE); }, [](Surface& s) { return Get(s.system, &System::get_ExtPwrCtrl); }, 0, [](State& i) { return Num(i.trigger_input[0].code); }, 4},
};

struct Refusal {
  const char* name;
  std::uint16_t parameter;
  std::int16_t status;
  HRESULT (*call)(Surface&);
  HRESULT expected;
  const char* description;  // empty: no error information
  IID iid;
  std::size_t records;      // in the error trail, all with the status
};

constexpr std::uint16_t kFrequencyId = 0;
constexpr std::uint16_t kAveragingId = 4;
constexpr std::uint16_t kDwellId = 5;
constexpr std::uint16_t kTriggerId = 7;
constexpr std::uint16_t kLevelId = 79;
constexpr const char* kInstrumentError = "Instrument error detected.  Use ErrorQuery() to determine the error(s).";

const Refusal kRefusals[] = {
    {"Frequency", kFrequencyId, kRefusal, [](Surface& s) { return s.rf->put_Frequency(3e9); }, kRefusal, "", {}, 2},
    {"A notice is no failure", kFrequencyId, 3, [](Surface& s) { return s.rf->put_Frequency(3e9); }, S_OK, "", {}, 0},
    {"Level", kLevelId, kRefusal, [](Surface& s) { return s.rf->put_Level(-7.0); }, kRefusal, "", {}, 2},
    {"Output", kLevelId, kRefusal, [](Surface& s) { return s.rf->put_OutputEnabled(VARIANT_TRUE); }, kRefusal, "", {}, 2},
    {"Mode", kLevelId, kRefusal, [](Surface& s) { return s.sweep->put_Mode(ZentrelK4NSweepModeFrequencyStep); }, Code(0x80047001), kInstrumentError, __uuidof(IZentrelK4NSweep), 1},
    {"Configure stops at the mode", kFrequencyId, kRefusal, [](Surface& s) { return s.sweep->Configure(ZentrelK4NSweepModeFrequencyStep, ZentrelK4NSweepTriggerSourceExternal); }, Code(0x80047001), kInstrumentError, __uuidof(IZentrelK4NSweep), 1},
    {"Trigger source", kTriggerId, kRefusal, [](Surface& s) { return s.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceExternal); }, kRefusal, "", {}, 1},
    {"Trigger source that does not exist", kTriggerId, 0, [](Surface& s) { return s.sweep->put_TriggerSource(Any<ZentrelK4NSweepTriggerSourceEnum>(3)); }, -1, "", {}, 0},
    {"Frequency step is heard of in the trail only", kFrequencyId, kRefusal, [](Surface& s) { return s.frequency_step->put_Start(3e9); }, S_OK, "", {}, 3},
    {"Power step, too", kLevelId, kRefusal, [](Surface& s) { return s.power_step->put_Stop(-40.0); }, S_OK, "", {}, 3},
    {"Dwell of the frequency step", kDwellId, kRefusal, [](Surface& s) { return s.frequency_step->put_Dwell(1.0); }, kRefusal, "", {}, 1},
    {"Dwell of the power step", kDwellId, kRefusal, [](Surface& s) { return s.power_step->put_Dwell(1.0); }, S_OK, "", {}, 1},
    {"Single step of the frequency step", kTriggerId, kRefusal, [](Surface& s) { return s.frequency_step->put_SingleStepEnabled(VARIANT_TRUE); }, kRefusal, "", {}, 1},
    {"Single step of the power step", kTriggerId, kRefusal, [](Surface& s) { return s.power_step->put_SingleStepEnabled(VARIANT_TRUE); }, S_OK, "", {}, 1},
    {"Averaging", kAveragingId, kRefusal, [](Surface& s) { return s.acquisition->put_Averaging(2); }, kRefusal, "", {}, 1},
};
// clang-format on

TEST_F(Settings, ReachTheInstrumentAndReadBack) {
  for (const auto& row : kPutGet) {
    EXPECT_EQ(row.put(surface_), S_OK) << row.name;
    EXPECT_NEAR(row.get(surface_), row.reads, std::abs(row.reads) * 1e-12) << row.name;
    EXPECT_NEAR(row.instrument(instrument_.State()), row.holds, 1e-9) << row.name;
  }
  EXPECT_EQ(Get(surface_.sweep, &Sweep::get_TriggerSource), ZentrelK4NSweepTriggerSourceSoftware);
  EXPECT_EQ(Get(surface_.trigger_output, &TriggerOutput::get_Mode),
            ZentrelK4NTriggerOutputModeSoftware);
  EXPECT_FALSE(TakeErrorInfo().present);
  EXPECT_THAT(TakeErrors(), ElementsAre());
}

TEST_F(Settings, RefusalsReachTheClientOrTheTrail) {
  for (const auto& row : kRefusals) {
    SCOPED_TRACE(row.name);
    instrument_.InjectFault(Fault::Refuse(row.parameter, row.status));
    ExpectReported(row.call(surface_), row.expected, row.description, row.iid);
    instrument_.ClearFaults();
    EXPECT_EQ(TakeErrors(), std::vector<LONG>(row.records, row.status));
  }
  EXPECT_EQ(Get(surface_.rf, &Rf::get_Frequency), 3e9) << "as asked for, not as programmed";
  EXPECT_EQ(Get(surface_.frequency_step, &FStep::get_Start), 3e9);
  EXPECT_EQ(Get(surface_.sweep, &Sweep::get_Mode), ZentrelK4NSweepModeNone);
  EXPECT_EQ(Get(surface_.sweep, &Sweep::get_TriggerSource), ZentrelK4NSweepTriggerSourceSoftware);
  EXPECT_EQ(surface_.rf->put_Frequency(1e9), S_OK) << "the worker goes on after all of it";
}

TEST_F(Settings, ConfigureLeavesTheLevelAfterARefusedFrequency) {
  const double level = instrument_.State().level.start;
  instrument_.InjectFault(Fault::Refuse(kFrequencyId, kRefusal));
  EXPECT_EQ(surface_.rf->Configure(1e9, -3.0), kRefusal);
  EXPECT_EQ(instrument_.State().level.start, level);
}

TEST_F(Settings, ErrorQueryTellsTheCodeAsText) {
  EXPECT_EQ(surface_.utility->ErrorQuery(&surface_.integer, &surface_.text), S_OK);
  EXPECT_EQ(surface_.integer, 0);
  EXPECT_EQ(surface_.text, nullptr) << "no text for no error";
  instrument_.InjectFault(Fault::Refuse(kDwellId, kRefusal));
  surface_.frequency_step->put_Dwell(1.0);
  EXPECT_EQ(surface_.utility->ErrorQuery(&surface_.integer, &surface_.text), S_OK);
  EXPECT_EQ(TakeText(surface_.text), "-321");
}

TEST_F(Settings, EnumerationsOutsideTheirListAreNamed) {
  const std::string text =
      "Does not support this class-compliant feature: (enumeration) value 1 passed as the value "
      "for ";
  ExpectReported(surface_.sweep->put_Mode(Any<ZentrelK4NSweepModeEnum>(1)), Code(0x80047013),
                 text + "property Mode.", __uuidof(Sweep));
  ExpectReported(surface_.frequency_step->put_Scaling(ZentrelK4NFrequencyStepScalingLogarithmic),
                 Code(0x80047013), text + "property Scaling", __uuidof(FStep));
  ExpectReported(surface_.frequency_step->ConfigureStartStop(
                     1e9, 2e9, ZentrelK4NFrequencyStepScalingLogarithmic, 1e6),
                 Code(0x80047013), text + "parameter Scaling in method ConfigureStartStop.",
                 __uuidof(FStep));
}

TEST_F(Settings, ArraysComeBackAsTheInstrumentTookThem) {
  EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModeList), S_OK);
  const auto frequencies = Doubles({1e9, 30e9, 2e9});
  SAFEARRAY* array = frequencies.Get();
  EXPECT_EQ(surface_.list->CreateFrequency(Text("any").Get(), &array), S_OK);
  EXPECT_THAT(ValuesOf(array), ElementsAre(1e9, 20e9, 2e9));
  EXPECT_EQ(instrument_.State().frequency.list.size(), 3u);
  EXPECT_EQ(surface_.list->CreateFrequency(nullptr, nullptr), S_OK) << "no array: no list";

  const auto widths = Doubles({1e-6, 2e-6});
  const auto delays = Doubles({1e-6, 9e-6});
  SAFEARRAY* width = widths.Get();
  SAFEARRAY* delay = delays.Get();
  EXPECT_EQ(surface_.pulse_generator->put_Width(1e-6), S_OK);
  EXPECT_EQ(surface_.pulse_generator->put_InternalTriggerPeriod(10e-6), S_OK);
  EXPECT_EQ(surface_.pulse_modulation->put_Enabled(VARIANT_TRUE), S_OK);
  EXPECT_EQ(surface_.packet->Configure(VARIANT_TRUE, &width, &delay), S_OK);
  EXPECT_THAT(ValuesOf(delay), ElementsAre(testing::DoubleEq(1e-6), testing::DoubleEq(6e-6)));
}

TEST_F(Settings, IdentityAndStateComeFromTheInstrument) {
  EXPECT_EQ(surface_.system->get_SerialNum(&surface_.text), S_OK);
  EXPECT_EQ(TakeText(surface_.text), "1101190042*") << "answered, not read from the file";
  EXPECT_EQ(surface_.system->get_Type(&surface_.text), S_OK);
  EXPECT_EQ(TakeText(surface_.text), "K4N-20");
  instrument_.PressRfButton(true);
  EXPECT_EQ(Get(surface_.system, &System::get_RFButton), 1);
  EXPECT_EQ(Get(surface_.system, &System::get_PLLState), 1);
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

TEST_F(Bare, AGeneratorHasNoChannelsAndNoOptions) {
  Open("GENERATOR");
  const std::string text = "ZentrelK4NLib: Does not support this class-compliant feature: ";
  const IID acquisition = __uuidof(IZentrelK4NAcquisition);
  auto status = ZentrelK4NAcquisitionStatusComplete;
  ExpectReported(surface_.acquisition->put_Averaging(2), kPropertyCode,
                 text + "property Averaging.", acquisition);
  ExpectReported(surface_.acquisition->get_Averaging(&surface_.integer), kPropertyCode,
                 text + "property Averaging.", acquisition);
  EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
  ExpectReported(surface_.acquisition->get_Status(&status), kPropertyCode,
                 text + "property Status.", acquisition);
  EXPECT_EQ(status, ZentrelK4NAcquisitionStatusInProgress);
  ExpectReported(surface_.channel->FetchData(&surface_.array, &surface_.number, &surface_.number_2),
                 kMethodCode, "", {});
  ExpectReported(surface_.channel->LoadDetectorDataFromFile(Text("any.det").Get()), kMethodCode,
                 text + "method LoadDetectorDataFromFile.", __uuidof(IZentrelK4NChannel));

  auto atten = ZentrelK4NSystemAttenCare;
  ExpectReported(surface_.system->get_Atten(&atten), kPropertyCode, "", {});
  ExpectReported(surface_.system->put_Atten(atten), kPropertyCode, "", {});
  ExpectReported(surface_.pulse_modulation->get_Enabled(&surface_.flag), kPropertyCode, "", {});
  EXPECT_EQ(surface_.system->get_SerialNum(&surface_.text), S_OK);
  EXPECT_EQ(TakeText(surface_.text), "1101190042");
  surface_.text = nullptr;
  ExpectReported(surface_.system->get_Type(&surface_.text), Code(0x8004705B), "", {});
  EXPECT_EQ(surface_.text, nullptr);
}

}  // namespace
}  // namespace driver_test
