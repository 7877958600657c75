// The type library's registration, and what of it belongs to other makers, too.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/com/Raii.h"
#include "platform/com/RegKey.h"
#include "server/interface/ZentrelK4NLib.h"
#include "tests/server/ClassesDump.h"
#include "tests/server/ModuleFixture.h"

// After windows.h, which declares what it uses.
#include <sddl.h>

using namespace server;

namespace {

using std::literals::operator""sv;

const std::wstring kInterfaces = L"Software\\Classes\\Interface";
const std::wstring kSharedKey = RegistryName(__uuidof(IIviDriverUtility));
const std::wstring kOwnInterface = RegistryName(__uuidof(IZentrelK4N));
const std::wstring kLibraryId = RegistryName(LIBID_ZentrelK4NLib);
const std::wstring kLibraryKey = L"Software\\Classes\\TypeLib\\" + kLibraryId;
const std::string kOurLine = "\\TypeLib =" + os::ToNarrow(kLibraryId, os::kUtf8CodePage);

/// One of the places where an interface's key may stand: a scope's, for programs of one width.
struct Place {
  const char* name;
  RegistrationScope scope;
  REGSAM width;
};
constexpr Place kMachine64 = {"machine64", RegistrationScope::kMachine, KEY_WOW64_64KEY};
constexpr Place kMachine32 = {"machine32", RegistrationScope::kMachine, KEY_WOW64_32KEY};
constexpr Place kUser64 = {"user64", RegistrationScope::kUser, KEY_WOW64_64KEY};
constexpr Place kUser32 = {"user32", RegistrationScope::kUser, KEY_WOW64_32KEY};
constexpr Place kPlaces[] = {kMachine64, kMachine32, kUser64, kUser32};

/// The key of all interfaces at a place.
class Interfaces : public RegKey {
 public:
  explicit Interfaces(const Place& place) {
    HKEY const root = ClassesOf(place.scope).root;
    HKEY key = nullptr;
    RegCreateKeyExW(root, kInterfaces.c_str(), 0, nullptr, 0, KEY_READ | place.width, nullptr, &key,
                    nullptr);
    RegCloseKey(key);
    EXPECT_EQ(Open(root, kInterfaces, KEY_READ | place.width), ERROR_SUCCESS);
  }
};

std::wstring Wide(const char* text) { return os::ToWide(text, os::kUtf8CodePage); }

struct ForeignValue {
  const wchar_t* key;
  const wchar_t* name;
  DWORD type;
  std::wstring_view data;
};
/// What another maker's components may leave in the key; it has no default value, which registering
/// sets.
constexpr ForeignValue kForeign[] = {
    {L"", L"Help", REG_EXPAND_SZ, L"%SystemRoot%\0"sv},
    {L"", L"Number", REG_DWORD, L"\x0201\x0403"sv},
    {L"", L"Nothing", REG_BINARY, L""sv},
    {L"", L"Open", REG_SZ, L"without its end"sv},
    {L"ProxyStubClsid32", L"", REG_SZ, L"{00000001-0000-0000-0000-000000000000}\0"sv},
    {L"TypeLib", L"", REG_SZ, L"{00000002-0000-0000-0000-000000000000}\0"sv},
    {L"TypeLib", L"Version", REG_SZ, L"3.1\0"sv},
    {L"Forward", L"", REG_SZ, L"{00000003-0000-0000-0000-000000000000}\0"sv},
    {L"Maker\\Deep", L"Texts", REG_MULTI_SZ, L"a\0b\0\0"sv},
};
constexpr wchar_t kAccess[] = L"D:P(A;;KA;;;WD)(A;;KR;;;AN)";

/// Another key in place of the one that the system's functions for type libraries write to.
class ClassesRoot {
 public:
  explicit ClassesRoot(const wchar_t* path) {
    EXPECT_EQ(key_.Create(HKEY_CURRENT_USER, path), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, key_.Get()), ERROR_SUCCESS);
  }
  ~ClassesRoot() { RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr); }
  ClassesRoot(const ClassesRoot&) = delete;
  ClassesRoot& operator=(const ClassesRoot&) = delete;

 private:
  RegKey key_;
};

class LibraryRegistrationTest : public ModuleTest {
 protected:
  LibraryRegistrationTest() {
    // Wine tells the widths apart where there is a part for 32-bit programs; the user's may lack.
    RegKey part;
    EXPECT_EQ(part.Create(HKEY_CURRENT_USER, L"Software\\Classes\\Wow6432Node"), ERROR_SUCCESS);
    Clean();
  }
  ~LibraryRegistrationTest() override { Clean(); }

  void Clean() const {
    for (const Place& place : kPlaces) RegDeleteTreeW(Interfaces(place).Get(), kSharedKey.c_str());
    for (const RegistrationScope scope : {RegistrationScope::kMachine, RegistrationScope::kUser}) {
      RegDeleteTreeW(ClassesOf(scope).root, kLibraryKey.c_str());
      Call(scope, true);
      Call(scope, false);
    }
  }

  HRESULT Call(RegistrationScope scope, bool install) const {
    // The functions for one user write to that user's part on Windows; Wine's to the machine's.
    std::optional<ClassesRoot> root;
    if (scope == RegistrationScope::kUser) root.emplace(L"Software\\Classes");
    return ModuleTest::Call(scope, install);
  }

  /// What an interface's key has at a place.
  static ClassesLines KeyAt(const Place& place, const std::wstring& key = kSharedKey) {
    ClassesLines lines;
    const Interfaces interfaces(place);
    DumpKey(interfaces.Get(), key, place.name, lines);
    return lines;
  }
  /// The places where an interface's key names our library.
  static std::set<std::string> OurPlaces(const std::wstring& key = kSharedKey) {
    std::set<std::string> ours;
    for (const Place& place : kPlaces) {
      const std::string line = place.name + kOurLine;
      if (KeyAt(place, key).contains(line)) ours.insert(place.name);
    }
    return ours;
  }

  /// The key as another maker's components leave it, with access rights of its own.
  static void PutForeignKey(const Place& place) {
    const Interfaces interfaces(place);
    PSECURITY_DESCRIPTOR access = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(kAccess, SDDL_REVISION_1,
                                                                     &access, nullptr));
    for (const ForeignValue& row : kForeign) {
      RegKey key;
      const std::wstring path = kSharedKey + (*row.key != 0 ? L"\\" : L"") + row.key;
      ASSERT_EQ(key.Create(interfaces.Get(), path), ERROR_SUCCESS);
      RegSetValueExW(key.Get(), row.name, 0, row.type,
                     reinterpret_cast<const BYTE*>(row.data.data()),
                     static_cast<DWORD>(row.data.size() * sizeof(wchar_t)));
      SetRegistryText(key.Get(), L"Place", Wide(place.name));
      EXPECT_EQ(RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, access), ERROR_SUCCESS);
    }
    LocalFree(access);
  }

  /// Who may do what with a key of another maker's.
  static std::wstring AccessAt(const Place& place, const wchar_t* subkey) {
    const Interfaces interfaces(place);
    RegKey key;
    EXPECT_EQ(key.Open(interfaces.Get(), kSharedKey + subkey, KEY_READ), ERROR_SUCCESS);
    std::vector<BYTE> access(4096);
    DWORD size = static_cast<DWORD>(access.size());
    EXPECT_EQ(RegGetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, access.data(), &size),
              ERROR_SUCCESS);
    wchar_t* shown = nullptr;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        access.data(), SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &shown, nullptr));
    std::wstring text = shown == nullptr ? L"" : shown;
    LocalFree(shown);
    return text;
  }
};

class TypeLibraryRegistration : public LibraryRegistrationTest,
                                public testing::WithParamInterface<RegistrationScope> {
 protected:
  HRESULT Register() const { return Call(GetParam(), true); }
  HRESULT Unregister() const { return Call(GetParam(), false); }
  static HKEY Root() { return ClassesOf(GetParam()).root; }

  /// Where the system registers interfaces for the scope. Wine's part of the user's for 32-bit
  /// programs is the machine's.
  static std::set<std::string> PlacesOfTheSystem() {
    if (GetParam() == RegistrationScope::kMachine) return {"machine64", "machine32"};
    const bool is_wine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version");
    return {"user64", is_wine ? "machine32" : "user32"};
  }

  static bool HasLibraryKey(const std::wstring& path) {
    RegKey key;
    return key.Open(Root(), kLibraryKey + path, KEY_READ) == ERROR_SUCCESS;
  }
};

TEST_F(LibraryRegistrationTest, LibraryIsLoadedByItsIdentity) {
  ASSERT_EQ(Call(RegistrationScope::kMachine, true), S_OK);
  ComPtr<ITypeLib> library;
  // Its own language, any, and a user's.
  for (const LCID language : {0x409, 0, 0x419}) {
    ASSERT_EQ(LoadRegTypeLib(LIBID_ZentrelK4NLib, 1, 2, language, library.Put()), S_OK) << language;
  }
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(library->GetTypeInfoOfGuid(__uuidof(IZentrelK4N), info.Put()), S_OK);
  library.Reset();
  info.Reset();
  EXPECT_EQ(Call(RegistrationScope::kMachine, false), S_OK);
  EXPECT_NE(LoadRegTypeLib(LIBID_ZentrelK4NLib, 1, 2, 0x409, library.Put()), S_OK);
}

TEST_F(LibraryRegistrationTest, ObjectTellsItsClassInAnyLanguage) {
  ASSERT_EQ(Call(RegistrationScope::kMachine, true), S_OK);
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

TEST_F(LibraryRegistrationTest, FailureOfTheSystemReachesTheCaller) {
  const auto call_with_no_classes = [this](bool install) {
    const ClassesRoot deleted(L"Software\\ZkDeleted");
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\ZkDeleted"), ERROR_SUCCESS);
    return Call(RegistrationScope::kMachine, install);
  };
  EXPECT_TRUE(FAILED(call_with_no_classes(true)));
  EXPECT_EQ(call_with_no_classes(false), S_OK) << "nothing was registered";
  ASSERT_EQ(Call(RegistrationScope::kMachine, true), S_OK);
  EXPECT_TRUE(FAILED(call_with_no_classes(false)));
}

TEST_P(TypeLibraryRegistration, RemovingTakesWhatIsLeftOfALibrary) {
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(RegDeleteTreeW(Root(), (kLibraryKey + L"\\1.2\\409").c_str()), ERROR_SUCCESS);
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_FALSE(HasLibraryKey(L""));
}

TEST_P(TypeLibraryRegistration, RemovingLeavesOtherLanguagesSystemKindsAndVersions) {
  for (const wchar_t* others : {L"\\1.2\\407\\win64", L"\\1.2\\409\\win32", L"\\1.2\\0\\win32",
                                L"\\1.2\\Maker", L"\\1.1\\409\\win64"}) {
    SCOPED_TRACE(os::ToNarrow(others, os::kUtf8CodePage));
    const bool is_our_version = std::wstring_view(others).starts_with(L"\\1.2");
    ASSERT_EQ(Register(), S_OK);
    {
      RegKey key;
      ASSERT_EQ(key.Create(Root(), kLibraryKey + others), ERROR_SUCCESS);
      SetRegistryText(key.Get(), {}, L"C:\\Others.tlb");
    }
    EXPECT_EQ(Unregister(), S_OK);
    EXPECT_EQ(RegistryText(Root(), kLibraryKey + others), L"C:\\Others.tlb");
    EXPECT_FALSE(HasLibraryKey(L"\\1.2\\409\\win64"));
    EXPECT_FALSE(HasLibraryKey(L"\\1.2\\0\\win64"));
    // The flags and the interfaces are the version's, whoever uses it.
    EXPECT_EQ(HasLibraryKey(L"\\1.2\\FLAGS"), is_our_version);
    EXPECT_EQ(HasLibraryKey(L"\\1.2\\HELPDIR"), is_our_version);
    EXPECT_EQ(OurPlaces(kOwnInterface),
              is_our_version ? PlacesOfTheSystem() : std::set<std::string>{});
    RegDeleteTreeW(Root(), kLibraryKey.c_str());
    EXPECT_EQ(Unregister(), S_OK);
  }
}

TEST_P(TypeLibraryRegistration, SharedInterfaceIsOursWhereNobodyElseHasIt) {
  ASSERT_EQ(Register(), S_OK);
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(OurPlaces(), PlacesOfTheSystem());
  EXPECT_EQ(OurPlaces(kOwnInterface), PlacesOfTheSystem());
  EXPECT_EQ(Unregister(), S_OK);
  for (const Place& place : kPlaces) EXPECT_EQ(KeyAt(place), ClassesLines{});
}

TEST_P(TypeLibraryRegistration, SharedInterfaceStaysWithOthers) {
  const std::vector<Place> planted[] = {{kMachine64, kMachine32, kUser64, kUser32},
                                        {kMachine64, kMachine32},
                                        {kMachine32},
                                        {kMachine64},
                                        {kUser32, kMachine64}};
  for (const std::vector<Place>& places : planted) {
    for (const Place& place : places) PutForeignKey(place);
    std::map<std::string, ClassesLines> before;
    std::map<std::string, RegKey> held;
    std::set<std::string> expected_ours = PlacesOfTheSystem();
    for (const Place& place : places) {
      before[place.name] = KeyAt(place);
      EXPECT_EQ(before[place.name].size(), 20U);
      EXPECT_EQ(held[place.name].Open(Interfaces(place).Get(), kSharedKey), ERROR_SUCCESS);
      if (place.scope == RegistrationScope::kUser) continue;
      // The user's would hide it.
      for (const Place& other : kPlaces) {
        if (other.width == place.width) expected_ours.erase(other.name);
      }
    }
    for (const Place& place : places) expected_ours.erase(place.name);
    for (const bool install : {true, true, false, false}) {
      EXPECT_EQ(Call(GetParam(), install), S_OK);
      EXPECT_EQ(OurPlaces(), install ? expected_ours : std::set<std::string>{});
      for (const Place& place : places) {
        SCOPED_TRACE(std::string(install ? "registering: " : "removing: ") + place.name);
        EXPECT_EQ(KeyAt(place), before[place.name]);
        EXPECT_EQ(SetRegistryText(held[place.name].Get(), L"Place", Wide(place.name)),
                  ERROR_SUCCESS)
            << "it is still the same key";
        for (const wchar_t* subkey : {L"", L"\\ProxyStubClsid32", L"\\TypeLib", L"\\Forward"}) {
          EXPECT_EQ(AccessAt(place, subkey), kAccess);
        }
      }
    }
    for (const Place& place : places) {
      EXPECT_EQ(RegDeleteTreeW(Interfaces(place).Get(), kSharedKey.c_str()), ERROR_SUCCESS);
    }
  }
}

TEST_P(TypeLibraryRegistration, SharedInterfaceStaysWithOthersThatCameLater) {
  ASSERT_EQ(Register(), S_OK);
  {
    RegKey key;
    EXPECT_EQ(key.Create(Interfaces(kUser32).Get(), kSharedKey + L"\\TypeLib"), ERROR_SUCCESS);
    SetRegistryText(key.Get(), {}, kLibraryId);
  }
  for (const Place& place : {kMachine64, kMachine32}) {
    RegDeleteTreeW(Interfaces(place).Get(), kSharedKey.c_str());
    PutForeignKey(place);
    // Without these, Wine takes the whole key away.
    for (const wchar_t* subkey : {L"\\Forward", L"\\Maker"}) {
      RegDeleteTreeW(Interfaces(place).Get(), (kSharedKey + subkey).c_str());
    }
  }
  const std::vector<ClassesLines> foreign = {KeyAt(kMachine64), KeyAt(kMachine32)};
  for (const bool install : {true, false}) {
    EXPECT_EQ(Call(GetParam(), install), S_OK);
    EXPECT_EQ((std::vector{KeyAt(kMachine64), KeyAt(kMachine32)}), foreign);
    EXPECT_EQ(AccessAt(kMachine32, L""), kAccess);
    // Registering for the user again shows the user, too, what the machine has now.
    if (GetParam() == RegistrationScope::kUser) {
      EXPECT_EQ(KeyAt(kUser64), ClassesLines{});
      EXPECT_EQ(KeyAt(kUser32), ClassesLines{});
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Scopes, TypeLibraryRegistration,
                         testing::Values(RegistrationScope::kMachine, RegistrationScope::kUser),
                         [](const auto& row) {
                           return row.param == RegistrationScope::kUser ? "User" : "Machine";
                         });

}  // namespace
