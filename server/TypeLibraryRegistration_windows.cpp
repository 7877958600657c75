#include "server/TypeLibraryRegistration.h"

#include <vector>

#include "platform/com/Raii.h"
#include "platform/com/RegKey.h"
#include "platform/os/Module.h"
#include "server/interface/Guids.h"

namespace {

constexpr WORD kMajorVersion = 1;
constexpr WORD kMinorVersion = 2;
constexpr LCID kLocale = 0x409;
constexpr DWORD kLongestName = 16384;  // of a value; a key's is shorter

std::wstring GuidText(REFGUID guid) {
  wchar_t text[39] = {};
  StringFromGUID2(guid, text, 39);
  return text;
}

/// A copy of a key with all that is in and below it.
class SavedKey {
 public:
  /// Reads the key at a place; one that is not there has no copy.
  SavedKey(HKEY parent, std::wstring path) : path_(std::move(path)) {
    RegKey key;
    exists_ = key.Open(parent, path_, KEY_READ) == ERROR_SUCCESS;
    if (!exists_) return;
    ReadValues(key.Get());
    std::wstring name(kLongestName, 0);
    DWORD length = kLongestName;
    for (DWORD index = 0; RegEnumKeyExW(key.Get(), index, name.data(), &length, nullptr, nullptr,
                                        nullptr, nullptr) == ERROR_SUCCESS;
         ++index, length = kLongestName) {
      subkeys_.emplace_back(key.Get(), name.substr(0, length));
    }
  }

  [[nodiscard]] bool Exists() const { return exists_; }

  /// Puts the copy in the place of what is there now.
  [[nodiscard]] LSTATUS Restore(HKEY parent) const {
    RegDeleteTreeW(parent, path_.c_str());
    RegKey key;
    LSTATUS status = key.Create(parent, path_);
    for (const Value& value : values_) {
      if (status != ERROR_SUCCESS) return status;
      status = RegSetValueExW(key.Get(), value.name.c_str(), 0, value.type, value.data.data(),
                              static_cast<DWORD>(value.data.size()));
    }
    for (const SavedKey& subkey : subkeys_) {
      if (status != ERROR_SUCCESS) return status;
      status = subkey.Restore(key.Get());
    }
    return status;
  }

 private:
  struct Value {
    std::wstring name;
    DWORD type;
    std::vector<BYTE> data;
  };

  void ReadValues(HKEY key) {
    std::wstring name(kLongestName, 0);
    for (DWORD index = 0;; ++index) {
      DWORD length = kLongestName;
      Value value{};
      DWORD size = 0;
      if (RegEnumValueW(key, index, name.data(), &length, nullptr, &value.type, nullptr, &size) !=
          ERROR_SUCCESS) {
        return;
      }
      value.name = name.substr(0, length);
      value.data.resize(size);
      RegQueryValueExW(key, value.name.c_str(), nullptr, nullptr, value.data.data(), &size);
      values_.push_back(std::move(value));
    }
  }

  std::wstring path_;
  bool exists_ = false;
  std::vector<Value> values_;
  std::vector<SavedKey> subkeys_;
};

/// Our type library describes one interface that belongs to the IVI Foundation. Registering a
/// library points the keys of all its interfaces to itself, and unregistering deletes them, so the
/// key that other makers' components rely on is put back afterwards. A key that we made ourselves
/// is left to the library's registration.
template <typename Act>
HRESULT KeepingForeignInterface(RegistrationScope scope, Act act) {
  const ClassesPlace classes = ClassesOf(scope);
  RegKey root;
  const LSTATUS opened = root.Create(classes.root, classes.path);
  if (opened != ERROR_SUCCESS) return HRESULT_FROM_WIN32(opened);
  const std::wstring path = L"Interface\\" + GuidText(__uuidof(IIviDriverUtility));
  const SavedKey saved(root.Get(), path);
  const bool is_foreign =
      saved.Exists() && RegistryText(root.Get(), path + L"\\TypeLib") != GuidText(kTypeLibraryId);
  const HRESULT result = act();
  if (!is_foreign) return result;
  const LSTATUS restored = saved.Restore(root.Get());
  return FAILED(result) ? result : HRESULT_FROM_WIN32(restored);
}

/// Makes the library known under the neutral locale, too. Its own locale is English: whoever asks
/// in another language, or in none as a marshaller of interfaces may do, would not find it.
constexpr std::string_view kNeutralLocaleScript =
    "HKCR { NoRemove TypeLib { %LIBRARY% { 1.2 { 0 { win64 = s '%MODULE%' } } } } }";
/// Takes away what the system leaves of the library's version: the neutral locale, and all of it
/// where the library's own locale is gone already.
constexpr std::string_view kRemainsScript =
    "HKCR { NoRemove TypeLib { %LIBRARY% { ForceRemove 1.2 } } }";

Registrar LibraryKey(RegistrationScope scope, const os::WideString& module_file) {
  return {scope, {{"LIBRARY", GuidText(kTypeLibraryId)}, {"MODULE", module_file}}};
}

/// A function of the automation library that systems before per-user registration lack; null there.
template <typename Function>
Function* OptionalFunction(os::Module& automation, const char* name) {
  return automation.Load("OLEAUT32.DLL") ? automation.FunctionOf<Function>(name) : nullptr;
}

bool IsRegistered(RegistrationScope scope) {
  const ClassesPlace classes = ClassesOf(scope);
  RegKey key;
  return key.Open(classes.root,
                  classes.path + L"\\TypeLib\\" + GuidText(kTypeLibraryId) + L"\\1.2\\409",
                  KEY_READ) == ERROR_SUCCESS;
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
  const bool was_registered = IsRegistered(scope);
  const HRESULT result = KeepingForeignInterface(scope, [&]() -> HRESULT {
    if (scope == RegistrationScope::kMachine) {
      return UnRegisterTypeLib(kTypeLibraryId, kMajorVersion, kMinorVersion, kLocale, SYS_WIN64);
    }
    os::Module automation;
    auto* const for_user =
        OptionalFunction<decltype(UnRegisterTypeLib)>(automation, "UnRegisterTypeLibForUser");
    return for_user == nullptr
               ? S_OK
               : for_user(kTypeLibraryId, kMajorVersion, kMinorVersion, kLocale, SYS_WIN64);
  });
  const HRESULT remains = LibraryKey(scope, {}).Remove(kRemainsScript);
  // A library that is not registered is refused with one code or another.
  return FAILED(result) && was_registered ? result : remains;
}
