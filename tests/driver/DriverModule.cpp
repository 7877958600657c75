#include "tests/driver/DriverModule.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "platform/os/Text.h"

namespace driver_test {
namespace {

namespace fs = std::filesystem;

using GetClassObjectFunction = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
using CanUnloadNowFunction = HRESULT STDAPICALLTYPE();

// A name under which the module layer finds the file on every system.
void CopyModule(const fs::path& built, const fs::path& folder, const std::string& name) {
  const bool is_dll = built.extension() == ".dll";
  fs::copy_file(built, folder / (is_dll ? name + ".dll" : "lib" + name + ".so"));
}

std::string ToUtf8(os::WideView text) { return os::ToNarrow(text, os::kUtf8CodePage); }

}  // namespace

DriverModule::DriverModule(Company company) {
  const fs::path folder = folder_.path() / u"\u00FC\u0434\u6E2C";
  fs::create_directory(folder);
  CopyModule(ZK_DRIVER_MODULE, folder, "zentrelk4nlib");
  if (company == Company::kVisaLibrary) CopyModule(ZK_VISA_MODULE, folder, "zevisa");
  EXPECT_TRUE(module_.Load(folder / "zentrelk4nlib.dll"));
}

HRESULT DriverModule::GetClassObject(const CLSID& class_id, const IID& iid, void** out) const {
  return module_.FunctionOf<GetClassObjectFunction>("DllGetClassObject")(class_id, iid, out);
}

HRESULT DriverModule::CanUnloadNow() const {
  return module_.FunctionOf<CanUnloadNowFunction>("DllCanUnloadNow")();
}

ComPtr<IClassFactory> DriverModule::Factory(const CLSID& class_id) const {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(GetClassObject(class_id, __uuidof(IClassFactory), factory.PutVoid()), S_OK);
  return factory;
}

ComPtr<IUnknown> DriverModule::Create(const CLSID& class_id, IUnknown* outer) const {
  ComPtr<IUnknown> object;
  const auto factory = Factory(class_id);
  EXPECT_EQ(factory->CreateInstance(outer, __uuidof(IUnknown), object.PutVoid()), S_OK);
  return object;
}

DriverModule& SharedModule() {
  static DriverModule driver;
  return driver;
}

DriverModule& ModuleWithVisa() {
  static DriverModule driver(Company::kVisaLibrary);
  return driver;
}

Surface::Surface(DriverModule& driver)
    : Surface(driver.Create(__uuidof(ZentrelK4N)).As<IZentrelK4N>()) {}

Surface::Surface(ComPtr<IZentrelK4N> object) : root(std::move(object)) {
  EXPECT_EQ(root->get_Utility(utility.Put()), S_OK);
  EXPECT_EQ(root->get_RF(rf.Put()), S_OK);
  EXPECT_EQ(root->get_Sweep(sweep.Put()), S_OK);
  EXPECT_EQ(root->get_Acquisition(acquisition.Put()), S_OK);
  EXPECT_EQ(root->get_System(system.Put()), S_OK);
  EXPECT_EQ(root->get_PulseGenerator(pulse_generator.Put()), S_OK);
  EXPECT_EQ(root->get_PulseModulation(pulse_modulation.Put()), S_OK);
  EXPECT_EQ(root->get_SyncGenerator(sync_generator.Put()), S_OK);
  EXPECT_EQ(sweep->get_FrequencyStep(frequency_step.Put()), S_OK);
  EXPECT_EQ(sweep->get_PowerStep(power_step.Put()), S_OK);
  EXPECT_EQ(sweep->get_List(list.Put()), S_OK);
  EXPECT_EQ(sweep->get_TriggerOutput(trigger_output.Put()), S_OK);
  EXPECT_EQ(acquisition->get_Channels(channels.Put()), S_OK);
  EXPECT_EQ(channels->get_Item(Text("ChannelA").Get(), channel.Put()), S_OK);
  EXPECT_EQ(pulse_generator->get_Double(pulse_double.Put()), S_OK);
  EXPECT_EQ(pulse_generator->get_Output(pulse_output.Put()), S_OK);
  EXPECT_EQ(pulse_generator->get_Packet(packet.Put()), S_OK);
}

ErrorInfo TakeErrorInfo() {
  ErrorInfo taken;
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.Put()) != S_OK) return taken;
  taken.present = true;
  Bstr description;
  info->GetDescription(description.Put());
  info->GetGUID(&taken.iid);
  taken.description = ToUtf8(description.View());
  return taken;
}

Bstr Text(std::string_view utf8) { return Bstr(os::ToWide(utf8, os::kUtf8CodePage)); }

std::string TakeText(BSTR text) {
  std::string utf8 = ToUtf8(os::WideView(text, SysStringLen(text)));
  SysFreeString(text);
  return utf8;
}

void ExpectReported(HRESULT actual, HRESULT expected, std::string_view description,
                    const IID& iid) {
  const ErrorInfo info = TakeErrorInfo();
  EXPECT_EQ(static_cast<std::uint32_t>(actual), static_cast<std::uint32_t>(expected));
  EXPECT_EQ(info.present, !description.empty());
  EXPECT_EQ(info.description, description);
  if (info.present && !description.empty()) {
    EXPECT_TRUE(IsEqualGUID(info.iid, iid)) << "reported against another interface";
  }
}

}  // namespace driver_test
