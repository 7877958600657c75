#include "server/TypeLibraryRegistration.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "platform/com/Raii.h"
#include "platform/com/RegKey.h"
#include "platform/os/Module.h"
#include "server/RegistryCopy_windows.h"
#include "server/interface/ZentrelK4NLib.h"

namespace server {
namespace {

constexpr WORD kMajorVersion = 1;
constexpr WORD kMinorVersion = 2;
constexpr LCID kLocale = 0x409;

/// The key of the IVI Foundation's interface that the library redeclares, in one scope and for
/// 32-bit or 64-bit programs. Other makers' components rely on it. The parent key is opened for
/// each use, because the system may create it in between.
class SharedInterfaceKey {
 public:
  SharedInterfaceKey(RegistrationScope scope, REGSAM width) : scope_(scope), width_(width) {}

  LSTATUS Read() {
    RegKey interfaces;
    const LSTATUS opened = Removed(Open(interfaces));
    if (opened != ERROR_SUCCESS || interfaces.Get() == nullptr) return opened;
    const LSTATUS read = copy_.Read(interfaces.Get(), Name());
    is_foreign_ = copy_.Exists() && RegistryText(interfaces.Get(), Name() + L"\\TypeLib") !=
                                        RegistryName(LIBID_ZentrelK4NLib);
    return read;
  }

  /// True if the key existed and does not come from our own registration.
  [[nodiscard]] bool IsForeign() const { return is_foreign_; }

  [[nodiscard]] LSTATUS Restore() const {
    RegKey interfaces;
    const LSTATUS opened = Open(interfaces);
    return opened == ERROR_SUCCESS ? copy_.Restore(interfaces.Get()) : opened;
  }

  [[nodiscard]] LSTATUS Remove() const {
    RegKey interfaces;
    LSTATUS status = Open(interfaces);
    if (status == ERROR_SUCCESS) status = RegDeleteTreeW(interfaces.Get(), Name().c_str());
    return Removed(status);
  }

 private:
  static std::wstring Name() { return RegistryName(__uuidof(IIviDriverUtility)); }

  LSTATUS Open(RegKey& interfaces) const {
    const ClassesPlace classes = ClassesOf(scope_);
    return interfaces.Open(classes.root, classes.path + L"\\Interface", KEY_READ | width_);
  }

  RegistrationScope scope_;
  REGSAM width_;
  RegistryCopy copy_;
  bool is_foreign_ = false;
};

/// Lets the system register or remove the library, and keeps other makers' registration of the
/// shared interface. Registering makes the keys of all interfaces name this library, for 32-bit and
/// 64-bit programs, and deletes none. What removing does with a key that names another library
/// (this one, once restored) is not documented. Wine deletes its subkeys, and the key if it has no
/// others; they are then created again. Both scopes are always saved and restored, because Wine
/// registers for the machine even when asked for the user. A key that we made ourselves is left to
/// the system: marshalling needs it if nobody else has one. But for its user, a user's key hides
/// the machine's; so it is removed if the machine's is another maker's.
template <typename Act>
HRESULT KeepingForeignInterface(RegistrationScope scope, Act act) {
  struct Keys {
    explicit Keys(REGSAM width)
        : machine(RegistrationScope::kMachine, width), user(RegistrationScope::kUser, width) {}
    SharedInterfaceKey machine;
    SharedInterfaceKey user;
  };
  std::array widths{Keys(KEY_WOW64_64KEY), Keys(KEY_WOW64_32KEY)};
  LSTATUS first = ERROR_SUCCESS;
  for (Keys& keys : widths) {
    KeepFirst(first, keys.machine.Read());
    KeepFirst(first, keys.user.Read());
  }
  if (first != ERROR_SUCCESS) return HRESULT_FROM_WIN32(first);
  const HRESULT result = act();
  for (const Keys& keys : widths) {
    if (keys.machine.IsForeign()) KeepFirst(first, keys.machine.Restore());
    if (keys.user.IsForeign()) {
      KeepFirst(first, keys.user.Restore());
    } else if (scope == RegistrationScope::kUser && keys.machine.IsForeign()) {
      KeepFirst(first, keys.user.Remove());
    }
  }
  return FAILED(result) ? result : HRESULT_FROM_WIN32(first);
}

/// Registers the library under the neutral locale, too. Its own locale is English, so a look-up in
/// another language, or in none as marshalling may do, would not find it.
constexpr std::string_view kNeutralLocaleScript =
    "HKCR { NoRemove TypeLib { %LIBRARY% { 1.2 { 0 { win64 = s '%MODULE%' } } } } }";
/// Our part of the library's version if others use that version, too.
constexpr std::string_view kOwnPartScript =
    "HKCR { NoRemove TypeLib { %LIBRARY% { 1.2 { 0 { win64 } 409 { win64 } } } } }";
/// Removes what the system leaves of the library's version: the neutral locale, or everything if
/// the library's own locale is missing already.
constexpr std::string_view kRemainsScript =
    "HKCR { NoRemove TypeLib { %LIBRARY% { ForceRemove 1.2 } } }";

Registrar LibraryKey(RegistrationScope scope, const os::WideString& module_file) {
  return {scope, {{"LIBRARY", RegistryName(LIBID_ZentrelK4NLib)}, {"MODULE", module_file}}};
}

/// A function of the automation library; null on systems without registration per user.
template <typename Function>
Function* OptionalFunction(os::Module& automation, const char* name) {
  return automation.Load("OLEAUT32.DLL") ? automation.FunctionOf<Function>(name) : nullptr;
}

LSTATUS OpenVersion(RegistrationScope scope, const std::wstring& subkey, RegKey& key) {
  const ClassesPlace classes = ClassesOf(scope);
  return key.Open(
      classes.root,
      classes.path + L"\\TypeLib\\" + RegistryName(LIBID_ZentrelK4NLib) + L"\\1.2" + subkey,
      KEY_READ);
}

bool IsRegistered(RegistrationScope scope) {
  RegKey key;
  return OpenVersion(scope, L"\\409", key) == ERROR_SUCCESS;
}

/// Whether the key of the library's version, or one below it, has other subkeys than these.
bool HasOthers(RegistrationScope scope, const std::wstring& subkey,
               std::initializer_list<const wchar_t*> own) {
  RegKey key;
  if (OpenVersion(scope, subkey, key) != ERROR_SUCCESS) return false;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256] = {};
    DWORD length = 256;
    if (RegEnumKeyExW(key.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      return false;
    }
    if (std::none_of(own.begin(), own.end(),
                     [&name](const wchar_t* known) { return lstrcmpiW(known, name) == 0; })) {
      return true;
    }
  }
}

/// Whether the library's version is registered in other languages, or for other kinds of systems as
/// by a driver for 32-bit programs.
bool OthersUseTheVersion(RegistrationScope scope) {
  return HasOthers(scope, {}, {L"0", L"409", L"FLAGS", L"HELPDIR"}) ||
         HasOthers(scope, L"\\0", {L"win64"}) || HasOthers(scope, L"\\409", {L"win64"});
}

}  // namespace

HRESULT RegisterTypeLibrary(RegistrationScope scope, const os::WideString& module_file) {
  ComPtr<ITypeLib> library;
  const HRESULT loaded = LoadTypeLibEx(module_file.c_str(), REGKIND_NONE, library.Put());
  if (FAILED(loaded)) return loaded;
  std::wstring file = module_file;
  std::wstring folder = file.substr(0, file.find_last_of(L'\\'));
  const HRESULT registered = KeepingForeignInterface(scope, [&]() -> HRESULT {
    if (scope == RegistrationScope::kMachine) {
      return RegisterTypeLib(library.Get(), file.data(), folder.data());
    }
    os::Module automation;
    auto* const for_user =
        OptionalFunction<decltype(RegisterTypeLib)>(automation, "RegisterTypeLibForUser");
    return for_user == nullptr ? S_OK : for_user(library.Get(), file.data(), folder.data());
  });
  return FAILED(registered) || !IsRegistered(scope)
             ? registered
             : LibraryKey(scope, module_file).Register(kNeutralLocaleScript);
}

HRESULT UnregisterTypeLibrary(RegistrationScope scope) {
  // The version's flags and the keys of its interfaces stay for its other users. The system would
  // remove the interfaces.
  if (OthersUseTheVersion(scope)) return LibraryKey(scope, {}).Remove(kOwnPartScript);
  const bool was_registered = IsRegistered(scope);
  const HRESULT result = KeepingForeignInterface(scope, [&]() -> HRESULT {
    if (scope == RegistrationScope::kMachine) {
      return UnRegisterTypeLib(LIBID_ZentrelK4NLib, kMajorVersion, kMinorVersion, kLocale,
                               SYS_WIN64);
    }
    os::Module automation;
    auto* const for_user =
        OptionalFunction<decltype(UnRegisterTypeLib)>(automation, "UnRegisterTypeLibForUser");
    return for_user == nullptr
               ? S_OK
               : for_user(LIBID_ZentrelK4NLib, kMajorVersion, kMinorVersion, kLocale, SYS_WIN64);
  });
  const HRESULT remains = LibraryKey(scope, {}).Remove(kRemainsScript);
  // For a library that is not registered the system's failure code varies; it is not reported.
  return FAILED(result) && was_registered ? result : remains;
}

}  // namespace server
