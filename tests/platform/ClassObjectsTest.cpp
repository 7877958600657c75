// Objects by class and ProgID, over the registry.
#include <dlfcn.h>

#include <thread>

#include "platform/com/Raii.h"
#include "platform/os/Module.h"
#include "tests/platform/Probe.h"
#include "tests/platform/RegistryFixture.h"

namespace {

const std::u16string kClassText = u"{5A0C3D1E-7B42-4E0B-9C55-1F6A2D8E9B70}";

std::string ProbeFile() { return (os::ThisModuleFolder() / "libplatformprobe.so").string(); }

bool ProbeIsLoaded() {
  void* const handle = dlopen(ProbeFile().c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

class ClassObjects : public RegistryTest {
 protected:
  ClassObjects() { Register(ProbeFile()); }

  static void Register(const std::string& module) {
    const Key server(HKEY_CLASSES_ROOT, u"CLSID\\" + kClassText + u"\\InprocServer32");
    SetText(server.Get(), nullptr, os::ToWide(module, os::kUtf8CodePage));
    const Key prog_id(HKEY_CLASSES_ROOT, u"CLSID\\" + kClassText + u"\\ProgID");
    SetText(prog_id.Get(), nullptr, u"Probe.Object.1");
    const Key clsid(HKEY_CLASSES_ROOT, u"Probe.Object.1\\CLSID");
    SetText(clsid.Get(), nullptr, kClassText);
  }

  static HRESULT Create(ComPtr<IUnknown>& object, DWORD context = CLSCTX_INPROC_SERVER) {
    return CoCreateInstance(kProbeClass, nullptr, context, __uuidof(IUnknown), object.PutVoid());
  }
};

struct ComThread {
  ComThread() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
  ~ComThread() { CoUninitialize(); }
  ComThread(const ComThread&) = delete;
  ComThread& operator=(const ComThread&) = delete;
};

TEST_F(ClassObjects, ProgIdAndClassFindEachOther) {
  CLSID clsid = {};
  EXPECT_EQ(CLSIDFromProgID(u"probe.object.1", &clsid), S_OK);
  EXPECT_EQ(clsid, kProbeClass);
  EXPECT_EQ(CLSIDFromString(u"Probe.Object.1", &clsid), S_OK);
  EXPECT_EQ(clsid, kProbeClass);
  LPOLESTR prog_id = nullptr;
  ASSERT_EQ(ProgIDFromCLSID(kProbeClass, &prog_id), S_OK);
  EXPECT_EQ(std::u16string(prog_id), u"Probe.Object.1");
  CoTaskMemFree(prog_id);
}

TEST_F(ClassObjects, ModuleStaysWhileAnObjectLivesAndGoesAfter) {
  ComPtr<IUnknown> object;
  {
    const ComThread com;
    ASSERT_EQ(Create(object), S_OK);
  }
  EXPECT_TRUE(ProbeIsLoaded());
  object.Reset();
  { const ComThread com; }
  EXPECT_FALSE(ProbeIsLoaded());
}

TEST_F(ClassObjects, NeedCom) {
  ComPtr<IUnknown> object;
  EXPECT_EQ(Create(object), CO_E_NOTINITIALIZED);
  const ComThread com;
  // One multithreaded member lets all threads in.
  std::thread([&] { EXPECT_EQ(Create(object), S_OK); }).join();
}

TEST_F(ClassObjects, FailuresTellWhatIsMissing) {
  const ComThread com;
  ComPtr<IUnknown> object;
  EXPECT_EQ(Create(object, CLSCTX_LOCAL_SERVER), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(
      CoCreateInstance(kProbeClass, nullptr, CLSCTX_ALL, __uuidof(IClassFactory), object.PutVoid()),
      E_NOINTERFACE);
  EXPECT_EQ(CoCreateInstance(kProbeClass, nullptr, CLSCTX_ALL, __uuidof(IUnknown), nullptr),
            E_POINTER);
  Register("/no/such/module.so");
  EXPECT_EQ(Create(object), CO_E_DLLNOTFOUND);
  Dl_info com_library = {};
  ASSERT_NE(dladdr(reinterpret_cast<void*>(&CoInitializeEx), &com_library), 0);
  Register(com_library.dli_fname);
  EXPECT_EQ(Create(object), CO_E_ERRORINDLL);
  RegDeleteTreeW(HKEY_CLASSES_ROOT, (u"CLSID\\" + kClassText).c_str());
  EXPECT_EQ(Create(object), REGDB_E_CLASSNOTREG);
  EXPECT_FALSE(object);
}

TEST(ComMembership, IsCountedAndKeepsItsMode) {
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
  CoUninitialize();
  ComPtr<ICreateErrorInfo> creator;
  ASSERT_EQ(CreateErrorInfo(creator.Put()), S_OK);
  SetErrorInfo(0, creator.As<IErrorInfo>().Get());
  CoUninitialize();
  ComPtr<IErrorInfo> info;
  EXPECT_EQ(GetErrorInfo(0, info.Put()), S_FALSE) << "goes with the membership";
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  CoUninitialize();
}

}  // namespace
