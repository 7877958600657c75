// The type library's registration, and the interface key that it shares with other makers.
#include <gtest/gtest.h>

#include "platform/com/Raii.h"
#include "platform/com/RegKey.h"
#include "platform/os/Module.h"
#include "server/interface/Guids.h"
#include "tests/server/ClassesDump.h"

namespace {

using Entry = HRESULT STDAPICALLTYPE();

constexpr wchar_t kSharedKey[] =
    L"Software\\Classes\\Interface\\{47ED5189-A398-11D4-BA58-000064657374}";

class TypeLibraryRegistration : public testing::Test {
 protected:
  TypeLibraryRegistration() {
    EXPECT_TRUE(module_.Load(ZK_DRIVER_MODULE));
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kSharedKey);
    Unregister();
  }
  ~TypeLibraryRegistration() override {
    Unregister();
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kSharedKey);
  }

  HRESULT Register() const { return module_.FunctionOf<Entry>("DllRegisterServer")(); }
  HRESULT Unregister() const { return module_.FunctionOf<Entry>("DllUnregisterServer")(); }

  /// What the shared interface's key has.
  static ClassesLines SharedKey() {
    ClassesLines lines = DumpClasses(RegistrationScope::kMachine);
    std::erase_if(lines, [](const std::string& line) {
      return !line.starts_with("Interface\\{47ED5189-A398-11D4-BA58-000064657374}");
    });
    return lines;
  }

  /// A key as another maker's components leave it: their proxy, their type library, values of other
  /// types.
  static void PutForeignKey() {
    RegKey key;
    ASSERT_EQ(key.Create(HKEY_LOCAL_MACHINE, kSharedKey), ERROR_SUCCESS);
    SetRegistryText(key.Get(), {}, L"IIviDriverUtility");
    constexpr BYTE kNumber[] = {1, 2, 3, 4};
    RegSetValueExW(key.Get(), L"Number", 0, REG_DWORD, kNumber, sizeof kNumber);
    RegSetValueExW(key.Get(), L"Nothing", 0, REG_BINARY, nullptr, 0);
    RegKey proxy;
    ASSERT_EQ(proxy.Create(key.Get(), L"ProxyStubClsid32"), ERROR_SUCCESS);
    SetRegistryText(proxy.Get(), {}, L"{00000001-0000-0000-0000-000000000000}");
    RegKey library;
    ASSERT_EQ(library.Create(key.Get(), L"TypeLib"), ERROR_SUCCESS);
    SetRegistryText(library.Get(), {}, L"{00000002-0000-0000-0000-000000000000}");
    SetRegistryText(library.Get(), L"Version", L"3.1");
  }

  os::Module module_;
};

TEST_F(TypeLibraryRegistration, LibraryIsLoadedByItsIdentity) {
  ASSERT_EQ(Register(), S_OK);
  ComPtr<ITypeLib> library;
  // Its own language, any, and a user's.
  for (const LCID language : {0x409, 0, 0x419}) {
    ASSERT_EQ(LoadRegTypeLib(kTypeLibraryId, 1, 2, language, library.Put()), S_OK) << language;
  }
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(library->GetTypeInfoOfGuid(__uuidof(IZentrelK4N), info.Put()), S_OK);
  EXPECT_EQ(RegistryText(HKEY_CLASSES_ROOT,
                         L"Interface\\{C63AE521-7C9B-4DF3-A6C6-6319D401488B}\\TypeLib"),
            L"{389B1F24-04DA-4E1D-8DCF-A0C93677F2AF}");
  library.Reset();
  info.Reset();
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_NE(LoadRegTypeLib(kTypeLibraryId, 1, 2, 0x409, library.Put()), S_OK);
}

TEST_F(TypeLibraryRegistration, RemovingTakesWhatIsLeftOfALibrary) {
  const std::wstring key = L"Software\\Classes\\TypeLib\\{389B1F24-04DA-4E1D-8DCF-A0C93677F2AF}";
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, (key + L"\\1.2\\409").c_str()), ERROR_SUCCESS);
  EXPECT_EQ(Unregister(), S_OK);
  RegKey left;
  EXPECT_EQ(left.Open(HKEY_LOCAL_MACHINE, key, KEY_READ), ERROR_FILE_NOT_FOUND);
}

TEST_F(TypeLibraryRegistration, ObjectTellsItsClassInAnyLanguage) {
  ASSERT_EQ(Register(), S_OK);
  const LCID users_language = GetThreadLocale();
  ASSERT_TRUE(SetThreadLocale(0x419));
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  {
    ComPtr<IProvideClassInfo2> object;
    ASSERT_EQ(CoCreateInstance(__uuidof(ZentrelK4N), nullptr, CLSCTX_INPROC_SERVER,
                               __uuidof(IProvideClassInfo2), object.PutVoid()),
              S_OK);
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(object->GetClassInfo(info.Put()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, __uuidof(ZentrelK4N)));
    info->ReleaseTypeAttr(attributes);
  }
  SetThreadLocale(users_language);
  CoUninitialize();
}

TEST_F(TypeLibraryRegistration, SharedInterfaceIsOursWhereNobodyElseHasIt) {
  ASSERT_EQ(Register(), S_OK);
  ASSERT_EQ(Register(), S_OK);
  EXPECT_TRUE(
      SharedKey().contains("Interface\\{47ED5189-A398-11D4-BA58-000064657374}\\TypeLib "
                           "={389B1F24-04DA-4E1D-8DCF-A0C93677F2AF}"));
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_TRUE(SharedKey().empty());
}

TEST_F(TypeLibraryRegistration, SharedInterfaceStaysWithOthers) {
  PutForeignKey();
  const ClassesLines foreign = SharedKey();
  EXPECT_EQ(foreign.size(), 9U);
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(SharedKey(), foreign);
  DWORD type = 0;
  DWORD number = 0;
  DWORD size = sizeof number;
  RegKey key;
  ASSERT_EQ(key.Open(HKEY_LOCAL_MACHINE, kSharedKey), ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExW(key.Get(), L"Number", nullptr, &type, reinterpret_cast<BYTE*>(&number),
                             &size),
            ERROR_SUCCESS);
  EXPECT_EQ(type, REG_DWORD);
  EXPECT_EQ(number, 0x04030201U);
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_EQ(SharedKey(), foreign);
}

TEST_F(TypeLibraryRegistration, SharedInterfaceStaysWithOthersThatCameLater) {
  ASSERT_EQ(Register(), S_OK);
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, kSharedKey);
  PutForeignKey();
  const ClassesLines foreign = SharedKey();
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_EQ(SharedKey(), foreign);
}

}  // namespace
