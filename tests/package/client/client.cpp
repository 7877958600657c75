// client RESOURCE - opens the instrument by the driver's ProgID, and tells its serial number.
#include <IviInherent.h>
#include <ZentrelK4NLib.h>

#include <cstdio>
#include <string>

namespace {

int Fail(const char* what, HRESULT result) {
  std::printf("%s: 0x%08X\n", what, static_cast<unsigned>(result));
  return 1;
}

}  // namespace

int main(int, char** argv) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  CLSID class_id{};
  HRESULT result = CLSIDFromProgID(u"ZentrelK4NLib.ZentrelK4N", &class_id);
  if (result != S_OK) return Fail("CLSIDFromProgID", result);
  IZentrelK4N* driver = nullptr;
  result = CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IZentrelK4N),
                            reinterpret_cast<void**>(&driver));
  if (result != S_OK) return Fail("CoCreateInstance", result);
  const std::string typed = argv[1];
  BSTR resource = SysAllocString(std::u16string(typed.begin(), typed.end()).c_str());
  result = driver->Initialize(resource, VARIANT_FALSE, VARIANT_FALSE, nullptr);
  SysFreeString(resource);
  if (result != S_OK) return Fail("Initialize", result);
  IZentrelK4NSystem* system = nullptr;
  BSTR serial = nullptr;
  driver->get_System(&system);
  result = system->get_SerialNum(&serial);
  if (result != S_OK) return Fail("System.SerialNum", result);
  std::puts(std::string(serial, serial + SysStringLen(serial)).c_str());
  SysFreeString(serial);
  system->Release();
  driver->Close();
  driver->Release();
  CoUninitialize();
  return 0;
}
