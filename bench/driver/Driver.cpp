#include "bench/driver/Driver.h"

#include <memory>
#include <stdexcept>

#include "platform/os/Module.h"
#include "platform/os/Text.h"
#include "server/interface/ZentrelK4NLib.h"

namespace bench {
namespace {

using GetClassObject = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);

void Check(bool good, const char* what) {
  if (!good) throw std::runtime_error(what);
}

Bstr Text(const std::string& text) { return Bstr(os::ToWide(text, os::kUtf8CodePage)); }

const os::Module& DriverModule() {
  static const os::Module* const module = [] {
    auto loaded = std::make_unique<os::Module>();
    Check(loaded->Load(ZK_DRIVER_MODULE), "the driver module cannot be loaded");
    return loaded.release();  // until the program ends, as clients keep it
  }();
  return *module;
}

}  // namespace

Driver::Driver() {
  auto* const get_class_object = DriverModule().FunctionOf<GetClassObject>("DllGetClassObject");
  ComPtr<IClassFactory> factory;
  Check(
      get_class_object(__uuidof(ZentrelK4N), __uuidof(IClassFactory), factory.PutVoid()) == S_OK &&
          factory->CreateInstance(nullptr, __uuidof(IZentrelK4N), root.PutVoid()) == S_OK,
      "no root object");
  rf = root.As<IZentrelK4NRF>();
  sweep = root.As<IZentrelK4NSweep>();
  frequency_step = root.As<IZentrelK4NFrequencyStep>();
  acquisition = root.As<IZentrelK4NAcquisition>();
  root.As<IZentrelK4NChannels>()->get_Item(Text("ChannelA").Get(), channel.Put());
  Check(rf && sweep && frequency_step && acquisition && channel, "an interface is missing");
}

Driver::~Driver() { root->Close(); }

void Driver::Open(const std::string& resource_name) const {
  Check(root->Initialize(Text(resource_name).Get(), VARIANT_FALSE, VARIANT_FALSE, nullptr) == S_OK,
        "no session");
}

}  // namespace bench
