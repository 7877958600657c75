// Every member that only says that it is not supported: code, text and interface, with no session
// open.
#include <gtest/gtest.h>

#include "tests/driver/DriverModule.h"

namespace driver_test {
namespace {

struct Row {
  const char* member;
  HRESULT (*call)(Surface&);
  HRESULT code;
  const char* name;
  IID iid;
};

const IID kComponent = __uuidof(IIviComponentIdentity);
const IID kIdentity = __uuidof(IIviDriverIdentity);
const IID kOperation = __uuidof(IIviDriverOperation);
const IID kUtility = __uuidof(IIviDriverUtility);
const IID kRf = __uuidof(IZentrelK4NRF);
const IID kFrequencyStep = __uuidof(IZentrelK4NFrequencyStep);
const IID kPowerStep = __uuidof(IZentrelK4NPowerStep);
const IID kList = __uuidof(IZentrelK4NList);
const IID kPulse = __uuidof(IZentrelK4NPulseGenerator);
const IID kPulseOutput = __uuidof(IZentrelK4NPulseGeneratorOutput);
const IID kChannel = __uuidof(IZentrelK4NChannel);

// clang-format off
const Row kRows[] = {
    {"Description", [](Surface& s) { return s.identity->get_Description(&s.text); }, kPropertyCode, "Description", kComponent},
    {"Revision", [](Surface& s) { return s.identity->get_Revision(&s.text); }, kPropertyCode, "Revision", kComponent},
    {"Vendor", [](Surface& s) { return s.identity->get_Vendor(&s.text); }, kPropertyCode, "Vendor", kComponent},
    {"InstrumentManufacturer", [](Surface& s) { return s.identity->get_InstrumentManufacturer(&s.text); }, kPropertyCode, "InstrumentManufacturer", kIdentity},
    {"InstrumentModel", [](Surface& s) { return s.identity->get_InstrumentModel(&s.text); }, kPropertyCode, "InstrumentModel", kIdentity},
    {"InstrumentFirmwareRevision", [](Surface& s) { return s.identity->get_InstrumentFirmwareRevision(&s.text); }, kPropertyCode, "InstrumentFirmwareRevision", kIdentity},
    {"Identifier", [](Surface& s) { return s.identity->get_Identifier(&s.text); }, kPropertyCode, "Identifier", kIdentity},
    {"SupportedInstrumentModels", [](Surface& s) { return s.identity->get_SupportedInstrumentModels(&s.text); }, kPropertyCode, "SupportedInstrumentModels", kIdentity},
    {"SpecificationMajorVersion", [](Surface& s) { return s.identity->get_SpecificationMajorVersion(&s.integer); }, kPropertyCode, "SpecificationMajorVersion", kIdentity},
    {"SpecificationMinorVersion", [](Surface& s) { return s.identity->get_SpecificationMinorVersion(&s.integer); }, kPropertyCode, "SpecificationMinorVersion", kIdentity},
    {"GroupCapabilities", [](Surface& s) { return s.identity->get_GroupCapabilities(&s.text); }, kPropertyCode, "GroupCapabilities", kIdentity},
    {"LogicalName", [](Surface& s) { return s.operation->get_LogicalName(&s.text); }, kPropertyCode, "LogicalName", kOperation},
    {"IoResourceDescriptor", [](Surface& s) { return s.operation->get_IoResourceDescriptor(&s.text); }, kPropertyCode, "IoResourceDescriptor", kOperation},
    {"Cache get", [](Surface& s) { return s.operation->get_Cache(&s.flag); }, kPropertyCode, "Cache", kOperation},
    {"Cache put", [](Surface& s) { return s.operation->put_Cache(VARIANT_TRUE); }, kPropertyCode, "Cache", kOperation},
    {"InterchangeCheck get", [](Surface& s) { return s.operation->get_InterchangeCheck(&s.flag); }, kPropertyCode, "InterchangeCheck", kOperation},
    {"InterchangeCheck put", [](Surface& s) { return s.operation->put_InterchangeCheck(VARIANT_TRUE); }, kPropertyCode, "InterchangeCheck", kOperation},
    {"QueryInstrumentStatus get", [](Surface& s) { return s.operation->get_QueryInstrumentStatus(&s.flag); }, kPropertyCode, "QueryInstrumentStatus", kOperation},
    {"QueryInstrumentStatus put", [](Surface& s) { return s.operation->put_QueryInstrumentStatus(VARIANT_TRUE); }, kPropertyCode, "QueryInstrumentStatus", kOperation},
    {"RangeCheck get", [](Surface& s) { return s.operation->get_RangeCheck(&s.flag); }, kPropertyCode, "RangeCheck", kOperation},
    {"RangeCheck put", [](Surface& s) { return s.operation->put_RangeCheck(VARIANT_TRUE); }, kPropertyCode, "RangeCheck", kOperation},
    {"RecordCoercions get", [](Surface& s) { return s.operation->get_RecordCoercions(&s.flag); }, kPropertyCode, "RecordCoercions", kOperation},
    {"RecordCoercions put", [](Surface& s) { return s.operation->put_RecordCoercions(VARIANT_TRUE); }, kPropertyCode, "RecordCoercions", kOperation},
    {"Simulate get", [](Surface& s) { return s.operation->get_Simulate(&s.flag); }, kPropertyCode, "Simulate", kOperation},
    {"Simulate put", [](Surface& s) { return s.operation->put_Simulate(VARIANT_TRUE); }, kPropertyCode, "Simulate", kOperation},
    {"DriverSetup", [](Surface& s) { return s.operation->get_DriverSetup(&s.text); }, kPropertyCode, "DriverSetup", kOperation},
    {"InvalidateAllAttributes", [](Surface& s) { return s.operation->InvalidateAllAttributes(); }, kMethodCode, "InvalidateAllAttributes", kOperation},
    {"ClearInterchangeWarnings", [](Surface& s) { return s.operation->ClearInterchangeWarnings(); }, kMethodCode, "ClearInterchangeWarnings", kOperation},
    {"GetNextInterchangeWarning", [](Surface& s) { return s.operation->GetNextInterchangeWarning(&s.text); }, kMethodCode, "GetNextInterchangeWarning", kOperation},
    {"ResetInterchangeCheck", [](Surface& s) { return s.operation->ResetInterchangeCheck(); }, kMethodCode, "ResetInterchangeCheck", kOperation},
    {"GetNextCoercionRecord", [](Surface& s) { return s.operation->GetNextCoercionRecord(&s.text); }, kMethodCode, "GetNextCoercionRecord", kOperation},
    {"Reset", [](Surface& s) { return s.utility->Reset(); }, kMethodCode, "Reset", kUtility},
    {"ResetWithDefaults", [](Surface& s) { return s.utility->ResetWithDefaults(); }, kMethodCode, "ResetWithDefaults", kUtility},
    {"Disable", [](Surface& s) { return s.utility->Disable(); }, kMethodCode, "Disable", kUtility},
    {"SelfTest", [](Surface& s) { return s.utility->SelfTest(&s.integer, &s.text); }, kMethodCode, "SelfTest", kUtility},
    {"LockObject", [](Surface& s) { return s.utility->LockObject(); }, kMethodCode, "LockObject", kUtility},
    {"UnlockObject", [](Surface& s) { return s.utility->UnlockObject(); }, kMethodCode, "UnlockObject", kUtility},
    {"IsSettled", [](Surface& s) { return s.rf->IsSettled(&s.flag); }, kMethodCode, "IsSettled", kRf},
    {"WaitUntilSettled for ever", [](Surface& s) { return s.rf->WaitUntilSettled(-1); }, kMethodCode, "WaitUntilSettled", kRf},
    {"FrequencyStep Size put", [](Surface& s) { return s.frequency_step->put_Size(1e6); }, kPropertyCode, "Size", kFrequencyStep},
    {"FrequencyStep ConfigureDwell", [](Surface& s) { return s.frequency_step->ConfigureDwell(VARIANT_TRUE, 1.0); }, kMethodCode, "ConfigureDwell", kFrequencyStep},
    {"FrequencyStep Reset is the driver's", [](Surface& s) { return s.frequency_step->Reset(); }, kMethodCode, "Reset", kUtility},
    {"List ConfigureDwell is the step's", [](Surface& s) { return s.list->ConfigureDwell(VARIANT_TRUE, 1.0); }, kMethodCode, "ConfigureDwell", kFrequencyStep},
    {"List Reset is the driver's", [](Surface& s) { return s.list->Reset(); }, kMethodCode, "Reset", kUtility},
    {"SelectedName get", [](Surface& s) { return s.list->get_SelectedName(&s.text); }, kPropertyCode, "SelectedName", kList},
    {"SelectedName put", [](Surface& s) { return s.list->put_SelectedName(nullptr); }, kPropertyCode, "SelectedName", kList},
    {"PowerStep ConfigureDwell", [](Surface& s) { return s.power_step->ConfigureDwell(VARIANT_TRUE, 1.0); }, kMethodCode, "ConfigureDwell", kPowerStep},
    {"PowerStep Reset", [](Surface& s) { return s.power_step->Reset(); }, kMethodCode, "Reset", kPowerStep},
    {"ConfigureExternalTrigger", [](Surface& s) { return s.pulse_generator->ConfigureExternalTrigger(ZentrelK4NPulseExternalTriggerSlopeNegative, 1.0); }, kMethodCode, "ConfigureExternalTrigger", kPulse},
    {"GatingEnabled put", [](Surface& s) { return s.pulse_generator->put_GatingEnabled(VARIANT_TRUE); }, kPropertyCode, "GatingEnabled", kPulse},
    {"GatingEnabled get", [](Surface& s) { return s.pulse_generator->get_GatingEnabled(&s.flag); }, kPropertyCode, "GatingEnabled", kPulse},
    {"ExternalTriggerSlope put", [](Surface& s) { return s.pulse_generator->put_ExternalTriggerSlope(ZentrelK4NPulseExternalTriggerSlopeNegative); }, kPropertyCode, "ExternalTriggerSlope", kPulse},
    {"ExternalTriggerSlope get", [](Surface& s) { return s.pulse_generator->get_ExternalTriggerSlope(nullptr); }, kPropertyCode, "ExternalTriggerSlope", kPulse},
    {"ExternalTriggerDelay put", [](Surface& s) { return s.pulse_generator->put_ExternalTriggerDelay(1.0); }, kPropertyCode, "ExternalTriggerDelay", kPulse},
    {"ExternalTriggerDelay get", [](Surface& s) { return s.pulse_generator->get_ExternalTriggerDelay(&s.number); }, kPropertyCode, "ExternalTriggerDelay", kPulse},
    {"Pulse TriggerSource put", [](Surface& s) { return s.pulse_generator->put_TriggerSource(ZentrelK4NPulseTriggerSourceExternal); }, kPropertyCode, "TriggerSource_PGenerator", kPulse},
    {"Pulse TriggerSource get", [](Surface& s) { return s.pulse_generator->get_TriggerSource(nullptr); }, kPropertyCode, "TriggerSource_PGenerator", kPulse},
    {"Output Configure", [](Surface& s) { return s.pulse_output->Configure(ZentrelK4NPulseOutputPolarityInverse, VARIANT_TRUE); }, kMethodCode, "Configure_PGeneratorOutput", kPulseOutput},
    {"Output Polarity put", [](Surface& s) { return s.pulse_output->put_Polarity(ZentrelK4NPulseOutputPolarityInverse); }, kPropertyCode, "Polarity_PGeneratorOutput", kPulseOutput},
    {"Output Polarity get", [](Surface& s) { return s.pulse_output->get_Polarity(nullptr); }, kPropertyCode, "Polarity_PGeneratorOutput", kPulseOutput},
    {"Output Enabled put", [](Surface& s) { return s.pulse_output->put_Enabled(VARIANT_TRUE); }, kPropertyCode, "Enabled_PGeneratorOutput", kPulseOutput},
    {"Output Enabled get", [](Surface& s) { return s.pulse_output->get_Enabled(&s.flag); }, kPropertyCode, "Enabled_PGeneratorOutput", kPulseOutput},
    {"Channel Enabled get", [](Surface& s) { return s.channel->get_Enabled(&s.flag); }, kPropertyCode, "Enabled", kChannel},
    {"Channel Enabled put", [](Surface& s) { return s.channel->put_Enabled(VARIANT_TRUE); }, kPropertyCode, "Enabled", kChannel},
};
// clang-format on

TEST(NotSupported, EveryMemberSaysSoAndWritesNothing) {
  Surface surface;
  surface.flag = 77;
  surface.number = 77.0;
  surface.integer = 77;
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.member);
    const std::string kind = row.code == kMethodCode ? "method " : "property ";
    ExpectReported(
        row.call(surface), row.code,
        "ZentrelK4NLib: Does not support this class-compliant feature: " + kind + row.name + ".",
        row.iid);
  }
  EXPECT_EQ(surface.flag, 77);
  EXPECT_EQ(surface.number, 77.0);
  EXPECT_EQ(surface.integer, 77);
  EXPECT_EQ(surface.text, nullptr);
}

}  // namespace
}  // namespace driver_test
