// Every supported member while no session is open.
#include <gtest/gtest.h>

#include "tests/driver/DriverModule.h"

namespace driver_test {
namespace {

struct Row {
  const char* member;
  HRESULT (*call)(Surface&);
};

struct Group {
  const char* name;
  IID iid;
  std::vector<Row> rows;
};

// clang-format off
const Group kNeedSession[] = {
  {"Close", __uuidof(IIviDriver), {
    {"Close", [](Surface& s) { return s.root->Close(); }},
  }},
  {"Root", __uuidof(IZentrelK4N), {
    {"SendSoftwareTrigger", [](Surface& s) { return s.root->SendSoftwareTrigger(); }},
  }},
  {"Utility", __uuidof(IIviDriverUtility), {
    {"ErrorQuery", [](Surface& s) { return s.utility->ErrorQuery(&s.integer, &s.text); }},
  }},
  {"RF", __uuidof(IZentrelK4NRF), {
    {"Configure", [](Surface& s) { return s.rf->Configure(1e9, -10.0); }},
    {"put_Frequency", [](Surface& s) { return s.rf->put_Frequency(1e9); }},
    {"get_Frequency", [](Surface& s) { return s.rf->get_Frequency(&s.number); }},
    {"put_Level", [](Surface& s) { return s.rf->put_Level(-10.0); }},
    {"get_Level", [](Surface& s) { return s.rf->get_Level(&s.number); }},
    {"put_OutputEnabled", [](Surface& s) { return s.rf->put_OutputEnabled(VARIANT_TRUE); }},
    {"get_OutputEnabled", [](Surface& s) { return s.rf->get_OutputEnabled(&s.flag); }},
  }},
  {"Sweep", __uuidof(IZentrelK4NSweep), {
    {"Configure", [](Surface& s) { return s.sweep->Configure(ZentrelK4NSweepModeList, ZentrelK4NSweepTriggerSourceSoftware); }},
    {"put_Mode", [](Surface& s) { return s.sweep->put_Mode(ZentrelK4NSweepModeNone); }},
    {"put_Mode tests the connection before the value", [](Surface& s) { return s.sweep->put_Mode(static_cast<ZentrelK4NSweepModeEnum>(1)); }},
    {"put_TriggerSource", [](Surface& s) { return s.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceSoftware); }},
    {"get_TriggerSource", [](Surface& s) { auto v = ZentrelK4NSweepTriggerSourceSoftware; return s.sweep->get_TriggerSource(&v); }},
    {"put_TriggerAction", [](Surface& s) { return s.sweep->put_TriggerAction(ZentrelK4NSweepTriggerActionMeasure); }},
    {"get_TriggerAction", [](Surface& s) { auto v = ZentrelK4NSweepTriggerActionSwitch; return s.sweep->get_TriggerAction(&v); }},
  }},
  {"FrequencyStep, and the members that the list shares with it", __uuidof(IZentrelK4NFrequencyStep), {
    {"ConfigureStartStop", [](Surface& s) { return s.frequency_step->ConfigureStartStop(1e9, 2e9, ZentrelK4NFrequencyStepScalingLogarithmic, 1e6); }},
    {"put_Start", [](Surface& s) { return s.frequency_step->put_Start(1e9); }},
    {"get_Start", [](Surface& s) { return s.frequency_step->get_Start(&s.number); }},
    {"put_Stop", [](Surface& s) { return s.frequency_step->put_Stop(1e9); }},
    {"get_Stop", [](Surface& s) { return s.frequency_step->get_Stop(&s.number); }},
    {"put_Scaling", [](Surface& s) { return s.frequency_step->put_Scaling(ZentrelK4NFrequencyStepScalingLinear); }},
    {"get_Scaling", [](Surface& s) { auto v = ZentrelK4NFrequencyStepScalingLinear; return s.frequency_step->get_Scaling(&v); }},
    {"get_Size", [](Surface& s) { return s.frequency_step->get_Size(&s.number); }},
    {"put_SingleStepEnabled", [](Surface& s) { return s.frequency_step->put_SingleStepEnabled(VARIANT_TRUE); }},
    {"get_SingleStepEnabled", [](Surface& s) { return s.frequency_step->get_SingleStepEnabled(&s.flag); }},
    {"put_Dwell", [](Surface& s) { return s.frequency_step->put_Dwell(1e-3); }},
    {"get_Dwell", [](Surface& s) { return s.frequency_step->get_Dwell(&s.number); }},
    {"List put_SingleStepEnabled", [](Surface& s) { return s.list->put_SingleStepEnabled(VARIANT_TRUE); }},
    {"List get_SingleStepEnabled", [](Surface& s) { return s.list->get_SingleStepEnabled(&s.flag); }},
    {"List put_Dwell", [](Surface& s) { return s.list->put_Dwell(1e-3); }},
    {"List get_Dwell", [](Surface& s) { return s.list->get_Dwell(&s.number); }},
  }},
  {"PowerStep", __uuidof(IZentrelK4NPowerStep), {
    {"ConfigureStartStop", [](Surface& s) { return s.power_step->ConfigureStartStop(-20, 0, 1); }},
    {"put_Start", [](Surface& s) { return s.power_step->put_Start(-20); }},
    {"get_Start", [](Surface& s) { return s.power_step->get_Start(&s.number); }},
    {"put_Stop", [](Surface& s) { return s.power_step->put_Stop(0); }},
    {"get_Stop", [](Surface& s) { return s.power_step->get_Stop(&s.number); }},
    {"put_Size", [](Surface& s) { return s.power_step->put_Size(1); }},
    {"get_Size", [](Surface& s) { return s.power_step->get_Size(&s.number); }},
    {"put_SingleStepEnabled", [](Surface& s) { return s.power_step->put_SingleStepEnabled(VARIANT_TRUE); }},
    {"get_SingleStepEnabled", [](Surface& s) { return s.power_step->get_SingleStepEnabled(&s.flag); }},
    {"put_Dwell", [](Surface& s) { return s.power_step->put_Dwell(1e-3); }},
    {"get_Dwell", [](Surface& s) { return s.power_step->get_Dwell(&s.number); }},
  }},
  {"List", __uuidof(IZentrelK4NList), {
    {"CreateFrequency", [](Surface& s) { return s.list->CreateFrequency(nullptr, &s.array); }},
    {"CreatePower", [](Surface& s) { return s.list->CreatePower(nullptr, &s.array); }},
    {"CreateFrequencyPower", [](Surface& s) { return s.list->CreateFrequencyPower(nullptr, &s.array, &s.array); }},
  }},
  {"Acquisition", __uuidof(IZentrelK4NAcquisition), {
    {"get_Averaging", [](Surface& s) { return s.acquisition->get_Averaging(&s.integer); }},
    {"put_Averaging", [](Surface& s) { return s.acquisition->put_Averaging(2); }},
  }},
  {"Channel", __uuidof(IZentrelK4NChannel), {
    {"LoadDetectorDataFromFile", [](Surface& s) { return s.channel->LoadDetectorDataFromFile(nullptr); }},
  }},
  {"System", __uuidof(IZentrelK4NSystem), {
    {"get_SerialNum", [](Surface& s) { return s.system->get_SerialNum(&s.text); }},
    {"get_Type", [](Surface& s) { return s.system->get_Type(&s.text); }},
    {"get_RFButton", [](Surface& s) { return s.system->get_RFButton(&s.flag); }},
    {"get_PLLState", [](Surface& s) { return s.system->get_PLLState(&s.flag); }},
    {"get_ERGState", [](Surface& s) { return s.system->get_ERGState(&s.flag); }},
    {"get_LevelState", [](Surface& s) { return s.system->get_LevelState(&s.flag); }},
    {"put_Atten", [](Surface& s) { return s.system->put_Atten(ZentrelK4NSystemAttenCare); }},
    {"get_Atten", [](Surface& s) { auto v = ZentrelK4NSystemAttenCare; return s.system->get_Atten(&v); }},
    {"put_ExtRefGenEnabled", [](Surface& s) { return s.system->put_ExtRefGenEnabled(VARIANT_TRUE); }},
    {"get_ExtRefGenEnabled", [](Surface& s) { return s.system->get_ExtRefGenEnabled(&s.flag); }},
    {"put_ExtRefGenFrequency", [](Surface& s) { return s.system->put_ExtRefGenFrequency(1e7); }},
    {"get_ExtRefGenFrequency", [](Surface& s) { return s.system->get_ExtRefGenFrequency(&s.number); }},
    {"put_SyncSourceDetection", [](Surface& s) { return s.system->put_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorFall); }},
    {"get_SyncSourceDetection", [](Surface& s) { auto v = ZentrelK4NSystemSyncSourceDetectorFall; return s.system->get_SyncSourceDetection(&v); }},
    {"put_ExtRefPhaseDelay", [](Surface& s) { return s.system->put_ExtRefPhaseDelay(1); }},
    {"get_ExtRefPhaseDelay", [](Surface& s) { return s.system->get_ExtRefPhaseDelay(&s.integer); }},
    {"put_ExtPwrCtrl", [](Surface& s) { return s.system->put_ExtPwrCtrl(VARIANT_TRUE); }},
    {"get_ExtPwrCtrl", [](Surface& s) { return s.system->get_ExtPwrCtrl(&s.flag); }},
    {"get_CompensMode", [](Surface& s) { auto v = ZentrelK4NSystemCompensModeDC; return s.system->get_CompensMode(&v); }},
    {"put_CompensMode", [](Surface& s) { return s.system->put_CompensMode(ZentrelK4NSystemCompensModeDC); }},
  }},
};

struct QuietRow {
  const char* member;
  HRESULT (*call)(Surface&);
  HRESULT expected;
};

// Members that leave no error information, whatever they return.
const QuietRow kQuiet[] = {
    {"DisableAllModulation reaches no instrument", [](Surface& s) { return s.rf->DisableAllModulation(); }, kNoSessionCode},
    {"ClearAll", [](Surface& s) { return s.list->ClearAll(); }, S_OK},
    {"Initiate succeeds all the same", [](Surface& s) { const HRESULT result = s.acquisition->Initiate(); TakeErrorInfo(); return result; }, S_OK},
    {"Abort", [](Surface& s) { return s.acquisition->Abort(); }, S_OK},
    {"PulseModulation put_Enabled on", [](Surface& s) { return s.pulse_modulation->put_Enabled(VARIANT_TRUE); }, kNoSessionCode},
    {"PulseModulation put_Enabled off", [](Surface& s) { return s.pulse_modulation->put_Enabled(VARIANT_FALSE); }, kNoSessionCode},
    {"PulseModulation put_Source while off", [](Surface& s) { return s.pulse_modulation->put_Source(ZentrelK4NPulseModulationSourceExternal); }, S_OK},
    {"PulseModulation put_ExternalPolarity", [](Surface& s) { return s.pulse_modulation->put_ExternalPolarity(ZentrelK4NPulseModulationExternalPolarityInverse); }, kNoSessionCode},
    {"SyncGenerator put_Width", [](Surface& s) { return s.sync_generator->put_Width(1e-6); }, kNoSessionCode},
    {"SyncGenerator put_Period", [](Surface& s) { return s.sync_generator->put_Period(1e-6); }, kNoSessionCode},
    {"SyncGenerator put_Delay", [](Surface& s) { return s.sync_generator->put_Delay(1e-6); }, kNoSessionCode},
    {"TriggerOutput put_Width swallows everything", [](Surface& s) { return s.trigger_output->put_Width(1e-6); }, S_OK},
    {"TriggerOutput put_Mode", [](Surface& s) { return s.trigger_output->put_Mode(ZentrelK4NTriggerOutputModeSyncGen); }, S_OK},
    {"TriggerOutput put_Polarity", [](Surface& s) { return s.trigger_output->put_Polarity(ZentrelK4NTriggerOutputPolarityInverse); }, S_OK},
    {"TriggerOutput put_Enabled", [](Surface& s) { return s.trigger_output->put_Enabled(VARIANT_TRUE); }, S_OK},
    {"Pulse width below zero", [](Surface& s) { return s.pulse_generator->put_Width(-1e-6); }, Code(0x80047010)},
    {"Pulse period below zero", [](Surface& s) { return s.pulse_generator->put_InternalTriggerPeriod(-1e-6); }, Code(0x80047010)},
    {"Pulse Configure gives the width's result", [](Surface& s) { return s.pulse_generator->Configure(ZentrelK4NPulseTriggerSourceExternal, -1e-6, VARIANT_TRUE); }, Code(0x80047010)},
    {"Double pulse delay below zero is not heard of", [](Surface& s) { return s.pulse_double->put_Delay(-1e-6); }, S_OK},
    {"Packet without widths", [](Surface& s) { return s.packet->Configure(VARIANT_FALSE, &s.array, &s.array); }, S_OK},
    {"Offset beyond 1e11", [](Surface& s) { return s.channel->put_FrequencyOffset(-1.1e11); }, Code(0x80047010)},
    {"Divider below one", [](Surface& s) { return s.channel->put_FrequencyDivider(0.5); }, Code(0x80047010)},
    {"Multiplier of nothing", [](Surface& s) { return s.channel->put_FrequencyMultiplier(0.0); }, S_OK},
};
// clang-format on

TEST(NoSession, MembersThatNeedOneSaySo) {
  Surface surface;
  for (const auto& group : kNeedSession) {
    for (const auto& row : group.rows) {
      SCOPED_TRACE(std::string(group.name) + ": " + row.member);
      ExpectReported(row.call(surface), kNotConnectedCode, kNotConnected, group.iid);
    }
  }
  EXPECT_EQ(surface.text, nullptr);
}

TEST(NoSession, TheOthersPassTheManagersResultOn) {
  Surface surface;
  for (const auto& row : kQuiet) {
    SCOPED_TRACE(row.member);
    ExpectReported(row.call(surface), row.expected, "", IID{});
  }
}

TEST(NoSession, GettersOutsideTheConnectionTestAnswerTheDefaults) {
  Surface surface;
  auto mode = ZentrelK4NSweepModeList;
  EXPECT_EQ(surface.sweep->get_Mode(&mode), S_OK);
  EXPECT_EQ(mode, ZentrelK4NSweepModeNone);
  surface.flag = 77;
  EXPECT_EQ(surface.root->get_Initialized(&surface.flag), S_OK);
  EXPECT_EQ(surface.flag, 0);
  EXPECT_EQ(surface.pulse_modulation->get_Enabled(&surface.flag), S_OK);
  EXPECT_EQ(surface.flag, VARIANT_FALSE);
  EXPECT_EQ(surface.pulse_generator->get_Width(&surface.number), S_OK);
  EXPECT_DOUBLE_EQ(surface.number, 1e-9);
  EXPECT_EQ(surface.channel->get_FrequencyMultiplier(&surface.number), S_OK);
  EXPECT_EQ(surface.number, 1.0);
  auto output_mode = ZentrelK4NTriggerOutputModeNone;
  EXPECT_EQ(surface.trigger_output->get_Mode(&output_mode), S_OK);
  EXPECT_EQ(output_mode, ZentrelK4NTriggerOutputModeSweep);
  EXPECT_EQ(surface.trigger_output->get_Width(&surface.number), S_OK);
  EXPECT_DOUBLE_EQ(surface.number, 1e-6);
  auto status = ZentrelK4NAcquisitionStatusComplete;
  EXPECT_EQ(surface.acquisition->get_Status(&status), S_OK);
  EXPECT_EQ(status, ZentrelK4NAcquisitionStatusUnknown);
}

TEST(NoSession, BooleansOfThePulseGroupsReadMinusOne) {
  Surface surface;
  EXPECT_EQ(surface.pulse_double->put_Enabled(1), S_OK);
  EXPECT_EQ(surface.pulse_double->get_Enabled(&surface.flag), S_OK);
  EXPECT_EQ(surface.flag, VARIANT_TRUE);
  EXPECT_EQ(surface.packet->put_Enabled(5), S_OK);
  EXPECT_EQ(surface.packet->get_Enabled(&surface.flag), S_OK);
  EXPECT_EQ(surface.flag, VARIANT_TRUE);
  EXPECT_EQ(surface.pulse_double->get_Enabled(&surface.flag), S_OK);
  EXPECT_EQ(surface.flag, VARIANT_FALSE) << "the packet takes the double pulse's place";
}

TEST(NoSession, PulseTimesKeepTheirUnits) {
  Surface surface;
  EXPECT_EQ(surface.pulse_generator->put_Width(2e-6), S_OK);
  EXPECT_EQ(surface.pulse_generator->get_Width(&surface.number), S_OK);
  EXPECT_DOUBLE_EQ(surface.number, 2e-6);
  EXPECT_EQ(surface.pulse_generator->put_InternalTriggerPeriod(1e-3), S_OK);
  EXPECT_EQ(surface.pulse_generator->get_InternalTriggerPeriod(&surface.number), S_OK);
  EXPECT_DOUBLE_EQ(surface.number, 1e-3);
  EXPECT_EQ(surface.pulse_double->Configure(VARIANT_TRUE, 3e-6), S_OK);
  EXPECT_EQ(surface.pulse_double->get_Delay(&surface.number), S_OK);
  EXPECT_DOUBLE_EQ(surface.number, 3e-6);
}

TEST(NoSession, AMeasurementEndsAtTheFirstLook) {
  Surface surface;
  auto status = ZentrelK4NAcquisitionStatusComplete;
  EXPECT_EQ(surface.acquisition->Initiate(), S_OK);
  EXPECT_EQ(surface.acquisition->get_Status(&status), S_OK);
  EXPECT_EQ(status, ZentrelK4NAcquisitionStatusUnknown);
  TakeErrorInfo();
  ExpectReported(surface.channel->FetchData(&surface.array, &surface.number, &surface.number_2),
                 Code(0x80047000), "ZentrelK4NLib: Failure \xE2\x80\x93 cannot recover.",
                 __uuidof(IZentrelK4NChannel));
  EXPECT_EQ(surface.acquisition->Initiate(), S_OK);
  TakeErrorInfo();
  ExpectReported(surface.channel->FetchData(&surface.array, &surface.number, &surface.number_2),
                 kNoSessionCode, "", IID{});
  EXPECT_EQ(surface.array, nullptr);
}

TEST(NoSession, ChannelsAreListedByNumberAndName) {
  Surface surface;
  EXPECT_EQ(surface.channels->get_Count(&surface.integer), S_OK);
  EXPECT_EQ(surface.integer, 3);
  const char* const names[] = {"ChannelA", "ChannelB", "ChannelR"};
  for (LONG index = 1; index <= 3; ++index) {
    BSTR name = Text("what stood here is freed").Detach();
    EXPECT_EQ(surface.channels->get_Name(index, &name), S_OK);
    EXPECT_EQ(TakeText(name), names[index - 1]);
    ComPtr<IZentrelK4NChannel> channel;
    EXPECT_EQ(surface.channels->get_Item(Text(names[index - 1]).Get(), channel.Put()), S_OK);
    EXPECT_TRUE(channel);
  }
  for (const LONG index : {0, 4, -1}) {
    ExpectReported(surface.channels->get_Name(index, &surface.text), Code(0x80047010),
                   "ZentrelK4NLib: Invalid value (" + std::to_string(index) +
                       ") for method Index, parameter Name.",
                   __uuidof(IZentrelK4NChannels));
  }
  for (const char* const name : {"channela", "ChannelA ", "ChannelC", ""}) {
    ComPtr<IZentrelK4NChannel> channel;
    ExpectReported(surface.channels->get_Item(Text(name).Get(), channel.Put()), Code(0x80047020),
                   "ZentrelK4NLib: Unknown channel name.", __uuidof(IZentrelK4NChannels));
    EXPECT_FALSE(channel);
  }
}

TEST(NoSession, NullPointersAreRefused) {
  Surface surface;
  EXPECT_EQ(surface.root->get_RF(nullptr), E_POINTER);
  EXPECT_EQ(surface.root->get_Initialized(nullptr), E_POINTER);
  EXPECT_EQ(surface.rf->get_Frequency(nullptr), E_POINTER);
  EXPECT_EQ(surface.power_step->get_Start(nullptr), E_POINTER);
  EXPECT_EQ(surface.system->get_SerialNum(nullptr), E_POINTER);
  EXPECT_EQ(surface.channels->get_Name(1, nullptr), E_POINTER);
  EXPECT_EQ(surface.channels->get_Item(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(surface.channel->get_FrequencyOffset(nullptr), E_POINTER);
  EXPECT_EQ(surface.channel->FetchData(nullptr, &surface.number, &surface.number_2), E_POINTER);
  EXPECT_EQ(surface.pulse_double->get_Delay(nullptr), E_POINTER);
  EXPECT_EQ(surface.trigger_output->get_Mode(nullptr), E_POINTER);
}

}  // namespace
}  // namespace driver_test
