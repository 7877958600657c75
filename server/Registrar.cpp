#include "server/Registrar.h"

#include "platform/com/RegKey.h"

namespace server {
namespace {

constexpr DWORD kLongestKeyName = 256;

ClassesPlace PlaceOf(const os::WideString& root, RegistrationScope scope) {
  if (root == OLESTR("HKCU")) return {HKEY_CURRENT_USER, {}};
  if (root == OLESTR("HKLM")) return {HKEY_LOCAL_MACHINE, {}};
  return ClassesOf(scope);
}

LSTATUS MakeContent(HKEY key, const ScriptKey& content);

LSTATUS MakeKey(HKEY parent, const ScriptKey& script) {
  if (script.removal == KeyRemoval::kForced || script.removal == KeyRemoval::kBefore) {
    const LSTATUS removed = Removed(RegDeleteTreeW(parent, script.name.c_str()));
    if (removed != ERROR_SUCCESS || script.removal == KeyRemoval::kBefore) return removed;
  }
  RegKey key;
  const LSTATUS created = key.Create(parent, script.name);
  return created == ERROR_SUCCESS ? MakeContent(key.Get(), script) : created;
}

LSTATUS MakeContent(HKEY key, const ScriptKey& content) {
  for (const ScriptValue& value : content.values) {
    const LSTATUS set = RegSetValueExW(key, value.name.c_str(), 0, static_cast<DWORD>(value.type),
                                       value.data.data(), static_cast<DWORD>(value.data.size()));
    if (set != ERROR_SUCCESS) return set;
  }
  for (const ScriptKey& subkey : content.keys) {
    const LSTATUS made = MakeKey(key, subkey);
    if (made != ERROR_SUCCESS) return made;
  }
  return ERROR_SUCCESS;
}

bool HasSubkeys(HKEY key) {
  OLECHAR name[kLongestKeyName] = {};
  DWORD length = kLongestKeyName;
  return RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) !=
         ERROR_NO_MORE_ITEMS;
}

LSTATUS RemoveContent(HKEY key, const ScriptKey& content);

LSTATUS RemoveKey(HKEY parent, const ScriptKey& script) {
  if (script.removal == KeyRemoval::kBefore) return ERROR_SUCCESS;
  const OLECHAR* const name = script.name.c_str();
  if (script.removal == KeyRemoval::kForced) return Removed(RegDeleteTreeW(parent, name));
  RegKey key;
  const LSTATUS opened = key.Open(parent, script.name);
  if (opened != ERROR_SUCCESS) return Removed(opened);
  LSTATUS first = RemoveContent(key.Get(), script);
  if (script.removal != KeyRemoval::kNever && !HasSubkeys(key.Get())) {
    KeepFirst(first, Removed(RegDeleteKeyW(parent, name)));
  }
  return first;
}

LSTATUS RemoveContent(HKEY key, const ScriptKey& content) {
  LSTATUS first = ERROR_SUCCESS;
  for (auto subkey = content.keys.rbegin(); subkey != content.keys.rend(); ++subkey) {
    KeepFirst(first, RemoveKey(key, *subkey));
  }
  for (const ScriptValue& value : content.values) {
    KeepFirst(first, Removed(RegDeleteValueW(key, value.name.c_str())));
  }
  return first;
}

enum class Direction { kRegister, kRemove };

LSTATUS RunRoot(const ScriptKey& root, RegistrationScope scope, Direction direction) {
  const ClassesPlace place = PlaceOf(root.name, scope);
  RegKey key;
  if (direction == Direction::kRegister) {
    const LSTATUS created = key.Create(place.root, place.path);
    return created == ERROR_SUCCESS ? MakeContent(key.Get(), root) : created;
  }
  const LSTATUS opened = key.Open(place.root, place.path);
  return opened == ERROR_SUCCESS ? RemoveContent(key.Get(), root) : Removed(opened);
}

HRESULT Run(std::string_view script, const Replacements& replacements, RegistrationScope scope,
            Direction direction) {
  try {
    LSTATUS first = ERROR_SUCCESS;
    for (const ScriptKey& root : ParseRegistryScript(script, replacements)) {
      if (first != ERROR_SUCCESS && direction == Direction::kRegister) break;
      KeepFirst(first, RunRoot(root, scope, direction));
    }
    return HRESULT_FROM_WIN32(first);
  } catch (const ScriptError&) {
    return Registrar::kScriptUnreadable;
  }
}

}  // namespace

ClassesPlace ClassesOf(RegistrationScope scope) {
  return {scope == RegistrationScope::kUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE,
          OLESTR("Software\\Classes")};
}

HRESULT Registrar::Register(std::string_view script) const {
  return Run(script, replacements_, scope_, Direction::kRegister);
}

HRESULT Registrar::Remove(std::string_view script) const {
  return Run(script, replacements_, scope_, Direction::kRemove);
}

}  // namespace server
