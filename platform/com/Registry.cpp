// The registry's functions.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/com/ClassKeys.h"
#include "platform/com/Com.h"
#include "platform/com/RegistryFile.h"
#include "platform/com/RegistryTree.h"

/// What a key handle stands for: a place, not an object, so that a key that others delete is
/// noticed.
struct HKEY__ {
  bool merged;  // a view of the users' classes over the machine's
  std::u16string path;
};

namespace {

constexpr std::u16string_view kUserClasses = u"HKEY_CURRENT_USER\\Software\\Classes";
constexpr std::u16string_view kMachineClasses = u"HKEY_LOCAL_MACHINE\\Software\\Classes";

HKEY__ classes_root{true, u""};
HKEY__ current_user{false, std::u16string(kUserRoot)};
HKEY__ local_machine{false, std::u16string(kMachineRoot)};

bool IsPredefined(HKEY key) {
  return key == &classes_root || key == &current_user || key == &local_machine;
}

HKEY__ Below(const HKEY__& parent, LPCWSTR name) {
  HKEY__ key = parent;
  if (name != nullptr) key.path.append(u"\\").append(name);
  return key;
}

std::u16string Joined(std::u16string_view a, std::u16string_view b) {
  return std::u16string(a).append(u"\\").append(b);
}

/// The places in the tree that a key shows, the one that prevails first.
std::vector<std::u16string> PlacesOf(const HKEY__& key) {
  if (!key.merged) return {key.path};
  return {Joined(kUserClasses, key.path), Joined(kMachineClasses, key.path)};
}

/// Below which root a change of the key can only be; empty for the merged view.
std::u16string_view RootOf(const HKEY__& key) {
  return key.merged ? std::u16string_view() : key.path;
}

/// The keys that exist at those places.
template <typename Tree>
auto ExistingKeys(Tree& root, const HKEY__& key) {
  std::vector<decltype(root.Find({}))> keys;
  for (const std::u16string& place : PlacesOf(key)) {
    if (auto* const found = root.Find(place)) keys.push_back(found);
  }
  return keys;
}

/// Where a key that does not exist yet is made. In the merged view that is the machine's part,
/// except below a key that the user's part has.
std::u16string PlaceOfNew(const RegistryKey& root, const HKEY__& key) {
  if (!key.merged) return key.path;
  const std::size_t name_end = key.path.find_last_not_of(u'\\');
  const std::size_t name = key.path.find_last_of(u'\\', name_end);
  const std::u16string parent = key.path.substr(0, name == key.path.npos ? 0 : name);
  const bool below_user_key = parent.find_first_not_of(u'\\') != parent.npos &&
                              root.Find(Joined(kUserClasses, parent)) != nullptr;
  return Joined(below_user_key ? kUserClasses : kMachineClasses, key.path);
}

bool HasControlCharacter(std::u16string_view name) {
  return std::any_of(name.begin(), name.end(), [](char16_t c) { return c < u' '; });
}

/// Runs a function of the registry; none lets an exception out.
template <typename Body>
LSTATUS WithoutExceptions(Body&& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

/// Lets `body` read a key where it stands; ERROR_KEY_DELETED when it is nowhere.
template <typename Body>
LSTATUS ReadKey(HKEY key, Body&& body) {
  if (key == nullptr) return ERROR_INVALID_HANDLE;
  return WithoutExceptions([&] {
    std::shared_ptr<const RegistryKey> root;
    if (const LSTATUS read = ReadRegistry(root); read != ERROR_SUCCESS) return read;
    const auto keys = ExistingKeys(*root, *key);
    return keys.empty() && !IsPredefined(key) ? ERROR_KEY_DELETED : body(keys);
  });
}

/// Lets `body` change the prevailing one of a key's places.
template <typename Body>
LSTATUS ChangeKey(HKEY key, Body&& body) {
  if (key == nullptr) return ERROR_INVALID_HANDLE;
  return WithoutExceptions([&] {
    return ChangeRegistry(RootOf(*key), [&](RegistryKey& root) {
      if (IsPredefined(key)) root.Create(PlacesOf(*key).back());
      const auto keys = ExistingKeys(root, *key);
      return keys.empty() ? ERROR_KEY_DELETED : body(*keys.front());
    });
  });
}

/// Gives a handle for a place that exists.
LSTATUS GiveHandle(HKEY__ place, HKEY* key) {
  *key = new HKEY__(std::move(place));
  return ERROR_SUCCESS;
}

std::u16string_view NameOrDefault(LPCWSTR name) { return name == nullptr ? u"" : name; }

/// Copies a text with its closing zero into a buffer of `size` bytes, and tells the text's size
/// there.
LSTATUS CopyText(const std::u16string& text, BYTE* data, DWORD* size) {
  const auto needed = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
  const DWORD room = size == nullptr ? 0 : *size;
  if (size != nullptr) *size = needed;
  if (data == nullptr) return ERROR_SUCCESS;
  if (room < needed) return ERROR_MORE_DATA;
  std::memcpy(data, text.c_str(), needed);
  return ERROR_SUCCESS;
}

std::vector<std::u16string> SubkeyNames(const std::vector<const RegistryKey*>& keys) {
  std::vector<std::u16string> names;
  for (const RegistryKey* key : keys) {
    for (const RegistryKey& subkey : key->subkeys()) {
      const bool known = std::any_of(names.begin(), names.end(), [&](const std::u16string& name) {
        return EqualNames(name, subkey.name());
      });
      if (!known) names.push_back(subkey.name());
    }
  }
  return names;
}

}  // namespace

const HKEY HKEY_CLASSES_ROOT = &classes_root;
const HKEY HKEY_CURRENT_USER = &current_user;
const HKEY HKEY_LOCAL_MACHINE = &local_machine;

LSTATUS RegCreateKeyExW(HKEY parent, LPCWSTR name, DWORD, LPWSTR, DWORD, REGSAM,
                        const SECURITY_ATTRIBUTES*, HKEY* key, DWORD* disposition) {
  if (parent == nullptr) return ERROR_INVALID_HANDLE;
  if (key == nullptr || HasControlCharacter(NameOrDefault(name))) return ERROR_INVALID_PARAMETER;
  return WithoutExceptions([&]() -> LSTATUS {
    const HKEY__ place = Below(*parent, name);
    bool existed = false;
    const LSTATUS result = ChangeRegistry(RootOf(place), [&](RegistryKey& root) {
      existed = !ExistingKeys(root, place).empty();
      if (!existed) root.Create(PlaceOfNew(root, place));
      return ERROR_SUCCESS;
    });
    if (result != ERROR_SUCCESS) return result;
    if (disposition != nullptr) {
      *disposition = existed ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    }
    return GiveHandle(place, key);
  });
}

LSTATUS RegOpenKeyExW(HKEY parent, LPCWSTR name, DWORD, REGSAM, HKEY* key) {
  if (parent == nullptr) return ERROR_INVALID_HANDLE;
  if (key == nullptr) return ERROR_INVALID_PARAMETER;
  return WithoutExceptions([&]() -> LSTATUS {
    std::shared_ptr<const RegistryKey> root;
    if (const LSTATUS read = ReadRegistry(root); read != ERROR_SUCCESS) return read;
    HKEY__ place = Below(*parent, name);
    if (ExistingKeys(*root, place).empty()) return ERROR_FILE_NOT_FOUND;
    return GiveHandle(std::move(place), key);
  });
}

LSTATUS RegCloseKey(HKEY key) {
  if (key == nullptr) return ERROR_INVALID_HANDLE;
  if (!IsPredefined(key)) delete key;
  return ERROR_SUCCESS;
}

LSTATUS RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
  if (type != REG_SZ || (data == nullptr && size != 0)) return ERROR_INVALID_PARAMETER;
  return ChangeKey(key, [&](RegistryKey& target) {
    std::u16string text(size / sizeof(WCHAR), u'\0');
    if (!text.empty()) std::memcpy(text.data(), data, text.size() * sizeof(WCHAR));
    target.SetValue(NameOrDefault(name), text.c_str());
    return ERROR_SUCCESS;
  });
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
  if (data != nullptr && size == nullptr) return ERROR_INVALID_PARAMETER;
  return ReadKey(key, [&](const std::vector<const RegistryKey*>& keys) -> LSTATUS {
    for (const RegistryKey* source : keys) {
      const std::u16string* const text = source->Value(NameOrDefault(name));
      if (text == nullptr) continue;
      if (type != nullptr) *type = REG_SZ;
      return CopyText(*text, data, size);
    }
    return ERROR_FILE_NOT_FOUND;
  });
}

LSTATUS RegDeleteValueW(HKEY key, LPCWSTR name) {
  return ChangeKey(key, [&](RegistryKey& target) {
    return target.RemoveValue(NameOrDefault(name)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  });
}

LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* length, DWORD*, LPWSTR, DWORD*,
                      FILETIME*) {
  if (name == nullptr || length == nullptr) return ERROR_INVALID_PARAMETER;
  return ReadKey(key, [&](const std::vector<const RegistryKey*>& keys) -> LSTATUS {
    const std::vector<std::u16string> names = SubkeyNames(keys);
    if (index >= names.size()) return ERROR_NO_MORE_ITEMS;
    DWORD size = static_cast<DWORD>(*length * sizeof(WCHAR));
    const LSTATUS result = CopyText(names[index], reinterpret_cast<BYTE*>(name), &size);
    if (result == ERROR_SUCCESS) *length = static_cast<DWORD>(names[index].size());
    return result;
  });
}

LSTATUS RegDeleteKeyW(HKEY parent, LPCWSTR name) {
  if (parent == nullptr) return ERROR_INVALID_HANDLE;
  if (name == nullptr || name[0] == 0) return ERROR_INVALID_PARAMETER;
  return WithoutExceptions([&] {
    const HKEY__ place = Below(*parent, name);
    return ChangeRegistry(RootOf(place), [&](RegistryKey& root) -> LSTATUS {
      for (const std::u16string& path : PlacesOf(place)) {
        const RegistryKey* const key = root.Find(path);
        if (key == nullptr) continue;
        if (!key->subkeys().empty()) return ERROR_ACCESS_DENIED;
        root.Remove(path);
        return ERROR_SUCCESS;
      }
      return ERROR_FILE_NOT_FOUND;
    });
  });
}

LSTATUS RegDeleteTreeW(HKEY parent, LPCWSTR name) {
  if (name == nullptr || name[0] == 0) {
    return ChangeKey(parent, [](RegistryKey& target) {
      target.Clear();
      return ERROR_SUCCESS;
    });
  }
  if (parent == nullptr) return ERROR_INVALID_HANDLE;
  return WithoutExceptions([&] {
    const HKEY__ place = Below(*parent, name);
    return ChangeRegistry(RootOf(place), [&](RegistryKey& root) -> LSTATUS {
      for (const std::u16string& path : PlacesOf(place)) {
        if (root.Remove(path)) return ERROR_SUCCESS;
      }
      return ERROR_FILE_NOT_FOUND;
    });
  });
}

std::optional<std::u16string> ClassesValue(const std::u16string& key) {
  std::shared_ptr<const RegistryKey> root;
  if (ReadRegistry(root) != ERROR_SUCCESS) return std::nullopt;
  for (const RegistryKey* source : ExistingKeys(*root, {true, key})) {
    if (const std::u16string* const text = source->Value(u"")) return *text;
  }
  return std::nullopt;
}
