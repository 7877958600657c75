#include "zk4n/members/MemberTable.h"

#include <algorithm>
#include <utility>

#include "server/interface/IviInherent.h"
#include "server/interface/ZentrelK4NLib.h"
#include "zk4n/members/MemberCall.h"

namespace members {
namespace {

using internal::Named;
using Names = std::initializer_list<Named>;

Named InOut(std::string_view name) { return {name, {}, Direction::kInOut}; }
Named Unstated(std::string_view name) { return {name, {}, Direction::kUnstated}; }
Named Optional(std::string_view name) { return {name, {}, Direction::kIn, true}; }

template <auto kFunction>
Member Get(std::string_view name, Names names) {
  return internal::MakeMember<kFunction>(kFunction, Kind::kGet, name, names);
}
template <auto kFunction>
Member Get(std::string_view name, std::string_view unit = {}, std::string_view value = "pVal") {
  return Get<kFunction>(name, {{value, unit}});
}
template <auto kFunction>
Member Put(std::string_view name, std::string_view unit = {}) {
  return internal::MakeMember<kFunction>(kFunction, Kind::kPut, name, {{"", unit}});
}
template <auto kFunction>
Member Method(std::string_view name, Names names = {}) {
  return internal::MakeMember<kFunction>(kFunction, Kind::kMethod, name, names);
}

template <typename T>
Interface Describe(std::vector<Member> list) {
  return {internal::NameOf<T>(), __uuidof(T), std::move(list)};
}

Interface Root() {
  using I = IZentrelK4N;
  return Describe<I>({
      Get<&I::get_Utility>("Utility"),
      Get<&I::get_RF>("RF"),
      Get<&I::get_PulseGenerator>("PulseGenerator"),
      Get<&I::get_Sweep>("Sweep"),
      Get<&I::get_PulseModulation>("PulseModulation"),
      Method<&I::SendSoftwareTrigger>("SendSoftwareTrigger"),
      Get<&I::get_Acquisition>("Acquisition"),
      Get<&I::get_System>("System"),
      Get<&I::get_SyncGenerator>("SyncGenerator"),
      Method<&I::Initialize>("Initialize",
                             {{"ResourceName"}, {"IdQuery"}, {"Reset"}, Optional("OptionString")}),
      Get<&I::get_Initialized>("Initialized"),
      Method<&I::Close>("Close"),
  });
}

Interface DriverUtility() {
  using I = IIviDriverUtility;
  return Describe<I>({
      Method<&I::Reset>("Reset"),
      Method<&I::ResetWithDefaults>("ResetWithDefaults"),
      Method<&I::Disable>("Disable"),
      Method<&I::SelfTest>("SelfTest", {InOut("TestResult"), InOut("TestMessage")}),
      Method<&I::ErrorQuery>("ErrorQuery", {InOut("ErrorCode"), InOut("ErrorMessage")}),
      Method<&I::LockObject>("LockObject"),
      Method<&I::UnlockObject>("UnlockObject"),
  });
}

Interface RF() {
  using I = IZentrelK4NRF;
  return Describe<I>({
      Method<&I::Configure>("Configure", {{"Frequency", "Hz"}, {"PowerLevel", "dBm"}}),
      Put<&I::put_Frequency>("Frequency", "Hz"),
      Get<&I::get_Frequency>("Frequency", "Hz"),
      Put<&I::put_Level>("Level", "dBm"),
      Get<&I::get_Level>("Level", "dBm"),
      Put<&I::put_OutputEnabled>("OutputEnabled"),
      Get<&I::get_OutputEnabled>("OutputEnabled"),
      Method<&I::IsSettled>("IsSettled", {{"Done"}}),
      Method<&I::WaitUntilSettled>("WaitUntilSettled", {{"MaxTimeMilliseconds", "ms"}}),
      Method<&I::DisableAllModulation>("DisableAllModulation"),
  });
}

Interface PulseGenerator() {
  using I = IZentrelK4NPulseGenerator;
  return Describe<I>({
      Get<&I::get_Double>("Double"),
      Get<&I::get_Output>("Output"),
      Get<&I::get_Packet>("Packet"),
      Method<&I::Configure>("Configure",
                            {{"PulseTriggerSource"}, {"PulseWidth", "s"}, {"GatingEnabled"}}),
      Method<&I::ConfigureExternalTrigger>("ConfigureExternalTrigger", {{"Slope"}, {"Delay", "s"}}),
      Put<&I::put_InternalTriggerPeriod>("InternalTriggerPeriod", "s"),
      Get<&I::get_InternalTriggerPeriod>("InternalTriggerPeriod", "s"),
      Put<&I::put_Width>("Width", "s"),
      Get<&I::get_Width>("Width", "s"),
      Put<&I::put_GatingEnabled>("GatingEnabled"),
      Get<&I::get_GatingEnabled>("GatingEnabled"),
      Put<&I::put_TriggerSource>("TriggerSource"),
      Get<&I::get_TriggerSource>("TriggerSource"),
      Put<&I::put_ExternalTriggerSlope>("ExternalTriggerSlope"),
      Get<&I::get_ExternalTriggerSlope>("ExternalTriggerSlope"),
      Put<&I::put_ExternalTriggerDelay>("ExternalTriggerDelay", "s"),
      Get<&I::get_ExternalTriggerDelay>("ExternalTriggerDelay", "s"),
  });
}

Interface PulseGeneratorDouble() {
  using I = IZentrelK4NPulseGeneratorDouble;
  return Describe<I>({
      Method<&I::Configure>("Configure", {{"Enabled"}, {"Delay", "s"}}),
      Put<&I::put_Enabled>("Enabled"),
      Get<&I::get_Enabled>("Enabled"),
      Put<&I::put_Delay>("Delay", "s"),
      Get<&I::get_Delay>("Delay", "s"),
  });
}

Interface PulseGeneratorOutput() {
  using I = IZentrelK4NPulseGeneratorOutput;
  return Describe<I>({
      Method<&I::Configure>("Configure", {{"Polarity"}, {"Enabled"}}),
      Put<&I::put_Polarity>("Polarity"),
      Get<&I::get_Polarity>("Polarity"),
      Put<&I::put_Enabled>("Enabled"),
      Get<&I::get_Enabled>("Enabled"),
  });
}

Interface PulsePacketGenerator() {
  using I = IZentrelK4NPulsePacketGenerator;
  return Describe<I>({
      Put<&I::put_Enabled>("Enabled"),
      Get<&I::get_Enabled>("Enabled"),
      Method<&I::Configure>("Configure", {{"Enabled"}, {"Width", "s"}, {"Delay", "s"}}),
  });
}

Interface Sweep() {
  using I = IZentrelK4NSweep;
  return Describe<I>({
      Get<&I::get_FrequencyStep>("FrequencyStep"),
      Get<&I::get_PowerStep>("PowerStep"),
      Get<&I::get_List>("List"),
      Get<&I::get_TriggerOutput>("TriggerOutput"),
      Method<&I::Configure>("Configure", {{"Mode"}, {"TriggerSource"}}),
      Put<&I::put_Mode>("Mode"),
      Get<&I::get_Mode>("Mode"),
      Put<&I::put_TriggerSource>("TriggerSource"),
      Get<&I::get_TriggerSource>("TriggerSource"),
      Put<&I::put_TriggerAction>("TriggerAction"),
      Get<&I::get_TriggerAction>("TriggerAction"),
  });
}

Interface FrequencyStep() {
  using I = IZentrelK4NFrequencyStep;
  return Describe<I>({
      Method<&I::ConfigureStartStop>(
          "ConfigureStartStop", {{"Start", "Hz"}, {"Stop", "Hz"}, {"Scaling"}, {"StepSize", "Hz"}}),
      Put<&I::put_Start>("Start", "Hz"),
      Get<&I::get_Start>("Start", "Hz"),
      Put<&I::put_Stop>("Stop", "Hz"),
      Get<&I::get_Stop>("Stop", "Hz"),
      Put<&I::put_Scaling>("Scaling"),
      Get<&I::get_Scaling>("Scaling"),
      Put<&I::put_Size>("Size", "Hz"),
      Get<&I::get_Size>("Size", "Hz"),
      Method<&I::ConfigureDwell>("ConfigureDwell", {{"SingleStepEnabled"}, {"Dwell", "s"}}),
      Put<&I::put_SingleStepEnabled>("SingleStepEnabled"),
      Get<&I::get_SingleStepEnabled>("SingleStepEnabled"),
      Put<&I::put_Dwell>("Dwell", "s"),
      Get<&I::get_Dwell>("Dwell", "s"),
      Method<&I::Reset>("Reset"),
  });
}

Interface PowerStep() {
  using I = IZentrelK4NPowerStep;
  return Describe<I>({
      Method<&I::ConfigureStartStop>("ConfigureStartStop",
                                     {{"Start", "dBm"}, {"Stop", "dBm"}, {"StepSize", "dB"}}),
      Put<&I::put_Start>("Start", "dBm"),
      Get<&I::get_Start>("Start", "dBm"),
      Put<&I::put_Stop>("Stop", "dBm"),
      Get<&I::get_Stop>("Stop", "dBm"),
      Put<&I::put_Size>("Size", "dB"),
      Get<&I::get_Size>("Size", "dB"),
      Method<&I::ConfigureDwell>("ConfigureDwell", {{"SingleStepEnabled"}, {"Dwell", "s"}}),
      Put<&I::put_SingleStepEnabled>("SingleStepEnabled"),
      Get<&I::get_SingleStepEnabled>("SingleStepEnabled"),
      Put<&I::put_Dwell>("Dwell", "s"),
      Get<&I::get_Dwell>("Dwell", "s"),
      Method<&I::Reset>("Reset"),
  });
}

Interface List() {
  using I = IZentrelK4NList;
  return Describe<I>({
      Method<&I::ConfigureDwell>("ConfigureDwell", {{"SingleStepEnabled"}, {"Dwell", "s"}}),
      Put<&I::put_SingleStepEnabled>("SingleStepEnabled"),
      Get<&I::get_SingleStepEnabled>("SingleStepEnabled"),
      Put<&I::put_Dwell>("Dwell", "s"),
      Get<&I::get_Dwell>("Dwell", "s"),
      Get<&I::get_SelectedName>("SelectedName"),
      Put<&I::put_SelectedName>("SelectedName"),
      Method<&I::ClearAll>("ClearAll"),
      Method<&I::CreateFrequency>("CreateFrequency", {{"Name"}, {"Frequency", "Hz"}}),
      Method<&I::CreatePower>("CreatePower", {{"Name"}, {"Power", "dBm"}}),
      Method<&I::CreateFrequencyPower>("CreateFrequencyPower",
                                       {{"Name"}, {"Frequency", "Hz"}, {"Power", "dBm"}}),
      Method<&I::Reset>("Reset"),
  });
}

Interface TriggerOutput() {
  using I = IZentrelK4NTriggerOutput;
  return Describe<I>({
      Put<&I::put_Width>("Width", "s"),
      Get<&I::get_Width>("Width", "s"),
      Put<&I::put_Mode>("Mode"),
      Get<&I::get_Mode>("Mode"),
      Put<&I::put_Polarity>("Polarity"),
      Get<&I::get_Polarity>("Polarity"),
      Put<&I::put_Enabled>("Enabled"),
      Get<&I::get_Enabled>("Enabled"),
  });
}

Interface PulseModulation() {
  using I = IZentrelK4NPulseModulation;
  return Describe<I>({
      Put<&I::put_Enabled>("Enabled"),
      Get<&I::get_Enabled>("Enabled"),
      Put<&I::put_Source>("Source"),
      Get<&I::get_Source>("Source"),
      Put<&I::put_ExternalPolarity>("ExternalPolarity"),
      Get<&I::get_ExternalPolarity>("ExternalPolarity"),
  });
}

Interface Acquisition() {
  using I = IZentrelK4NAcquisition;
  return Describe<I>({
      Get<&I::get_Averaging>("Averaging"),
      Put<&I::put_Averaging>("Averaging"),
      Get<&I::get_Status>("Status"),
      Get<&I::get_Channels>("Channels"),
      Method<&I::Initiate>("Initiate"),
      Method<&I::Abort>("Abort"),
  });
}

Interface Channels() {
  using I = IZentrelK4NChannels;
  return Describe<I>({
      Get<&I::get_Count>("Count"),
      Get<&I::get_Name>("Name", {{"Index"}, {"Name"}}),
      Get<&I::get_Item>("Item", {{"Name"}, {"Item"}}),
  });
}

Interface Channel() {
  using I = IZentrelK4NChannel;
  return Describe<I>({
      Get<&I::get_Enabled>("Enabled", "", "Value"),
      Put<&I::put_Enabled>("Enabled"),
      Method<&I::LoadDetectorDataFromFile>("LoadDetectorDataFromFile", {Unstated("FileName")}),
      Method<&I::FetchData>("FetchData",
                            {InOut("DataArray"), InOut("InitialX"), InOut("XIncrement")}),
      Get<&I::get_FrequencyOffset>("FrequencyOffset", "Hz", "Value"),
      Put<&I::put_FrequencyOffset>("FrequencyOffset", "Hz"),
      Get<&I::get_FrequencyMultiplier>("FrequencyMultiplier", "", "Value"),
      Put<&I::put_FrequencyMultiplier>("FrequencyMultiplier"),
      Get<&I::get_FrequencyDivider>("FrequencyDivider", "", "Value"),
      Put<&I::put_FrequencyDivider>("FrequencyDivider"),
  });
}

Interface System() {
  using I = IZentrelK4NSystem;
  return Describe<I>({
      Get<&I::get_SerialNum>("SerialNum"),
      Get<&I::get_Type>("Type"),
      Get<&I::get_RFButton>("RFButton"),
      Get<&I::get_PLLState>("PLLState"),
      Get<&I::get_ERGState>("ERGState"),
      Get<&I::get_LevelState>("LevelState"),
      Put<&I::put_Atten>("Atten"),
      Get<&I::get_Atten>("Atten"),
      Put<&I::put_ExtRefGenEnabled>("ExtRefGenEnabled"),
      Get<&I::get_ExtRefGenEnabled>("ExtRefGenEnabled"),
      Put<&I::put_ExtRefGenFrequency>("ExtRefGenFrequency", "Hz"),
      Get<&I::get_ExtRefGenFrequency>("ExtRefGenFrequency", "Hz"),
      Put<&I::put_SyncSourceDetection>("SyncSourceDetection"),
      Get<&I::get_SyncSourceDetection>("SyncSourceDetection"),
      Put<&I::put_ExtRefPhaseDelay>("ExtRefPhaseDelay"),
      Get<&I::get_ExtRefPhaseDelay>("ExtRefPhaseDelay"),
      Put<&I::put_ExtPwrCtrl>("ExtPwrCtrl"),
      Get<&I::get_ExtPwrCtrl>("ExtPwrCtrl"),
      Get<&I::get_CompensMode>("CompensMode"),
      Put<&I::put_CompensMode>("CompensMode"),
  });
}

Interface SyncGenerator() {
  using I = IZentrelK4NSyncGenerator;
  return Describe<I>({
      Put<&I::put_Width>("Width", "s"),
      Get<&I::get_Width>("Width", "s"),
      Put<&I::put_Period>("Period", "s"),
      Get<&I::get_Period>("Period", "s"),
      Put<&I::put_Delay>("Delay", "s"),
      Get<&I::get_Delay>("Delay", "s"),
  });
}

Interface DriverIdentity() {
  using I = IIviDriverIdentity;
  return Describe<I>({
      Get<&I::get_Description>("Description"),
      Get<&I::get_Revision>("Revision"),
      Get<&I::get_Vendor>("Vendor"),
      Get<&I::get_InstrumentManufacturer>("InstrumentManufacturer"),
      Get<&I::get_InstrumentModel>("InstrumentModel"),
      Get<&I::get_InstrumentFirmwareRevision>("InstrumentFirmwareRevision"),
      Get<&I::get_Identifier>("Identifier"),
      Get<&I::get_SupportedInstrumentModels>("SupportedInstrumentModels"),
      Get<&I::get_SpecificationMajorVersion>("SpecificationMajorVersion"),
      Get<&I::get_SpecificationMinorVersion>("SpecificationMinorVersion"),
      Get<&I::get_GroupCapabilities>("GroupCapabilities"),
  });
}

Interface DriverOperation() {
  using I = IIviDriverOperation;
  return Describe<I>({
      Get<&I::get_LogicalName>("LogicalName"),
      Get<&I::get_IoResourceDescriptor>("IoResourceDescriptor"),
      Get<&I::get_Cache>("Cache"),
      Put<&I::put_Cache>("Cache"),
      Get<&I::get_InterchangeCheck>("InterchangeCheck"),
      Put<&I::put_InterchangeCheck>("InterchangeCheck"),
      Get<&I::get_QueryInstrumentStatus>("QueryInstrumentStatus"),
      Put<&I::put_QueryInstrumentStatus>("QueryInstrumentStatus"),
      Get<&I::get_RangeCheck>("RangeCheck"),
      Put<&I::put_RangeCheck>("RangeCheck"),
      Get<&I::get_RecordCoercions>("RecordCoercions"),
      Put<&I::put_RecordCoercions>("RecordCoercions"),
      Get<&I::get_Simulate>("Simulate"),
      Put<&I::put_Simulate>("Simulate"),
      Get<&I::get_DriverSetup>("DriverSetup"),
      Method<&I::InvalidateAllAttributes>("InvalidateAllAttributes"),
      Method<&I::ClearInterchangeWarnings>("ClearInterchangeWarnings"),
      Method<&I::GetNextInterchangeWarning>("GetNextInterchangeWarning", {{"Warning"}}),
      Method<&I::ResetInterchangeCheck>("ResetInterchangeCheck"),
      Method<&I::GetNextCoercionRecord>("GetNextCoercionRecord", {{"Record"}}),
  });
}

}  // namespace

bool Parameter::IsOut() const {
  return direction == Direction::kOut || direction == Direction::kInOut ||
         direction == Direction::kRetval;
}

const Member* Interface::Find(std::string_view member, Kind kind) const {
  const auto found = std::ranges::find_if(
      members, [&](const Member& entry) { return entry.name == member && entry.kind == kind; });
  return found == members.end() ? nullptr : &*found;
}

const std::vector<Interface>& Interfaces() {
  static const std::vector<Interface> table{Root(),
                                            DriverUtility(),
                                            RF(),
                                            PulseGenerator(),
                                            PulseGeneratorDouble(),
                                            PulseGeneratorOutput(),
                                            PulsePacketGenerator(),
                                            Sweep(),
                                            FrequencyStep(),
                                            PowerStep(),
                                            List(),
                                            TriggerOutput(),
                                            PulseModulation(),
                                            Acquisition(),
                                            Channels(),
                                            Channel(),
                                            System(),
                                            SyncGenerator(),
                                            DriverIdentity(),
                                            DriverOperation()};
  return table;
}

const Interface* FindInterface(REFIID id) {
  const auto found = std::ranges::find_if(
      Interfaces(), [&](const Interface& entry) { return IsEqualIID(entry.id, id) != 0; });
  return found == Interfaces().end() ? nullptr : &*found;
}

}  // namespace members
