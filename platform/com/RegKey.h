// An owner for keys of the registry, and short forms for its names, texts and results.
#pragma once

#include <array>
#include <utility>

#include "platform/com/Com.h"
#include "platform/os/Text.h"

/// One open key, closed with its owner.
class RegKey {
 public:
  RegKey() = default;
  ~RegKey() { Close(); }
  RegKey(const RegKey&) = delete;
  RegKey& operator=(const RegKey&) = delete;

  /// Opens the key below `parent`, made with its parents where missing.
  LSTATUS Create(HKEY parent, const os::WideString& name) {
    Close();
    return RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                           KEY_ALL_ACCESS, nullptr, &key_, nullptr);
  }
  /// Opens a key that exists.
  LSTATUS Open(HKEY parent, const os::WideString& name, REGSAM access = KEY_ALL_ACCESS) {
    Close();
    return RegOpenKeyExW(parent, name.c_str(), 0, access, &key_);
  }
  void Close() {
    if (HKEY const held = std::exchange(key_, nullptr)) RegCloseKey(held);
  }

  [[nodiscard]] HKEY Get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

/// The result of removing something: what is not there needs no removing.
inline LSTATUS Removed(LSTATUS status) {
  return status == ERROR_FILE_NOT_FOUND ? LSTATUS{ERROR_SUCCESS} : status;
}

/// For what goes on after a failure and gives the first.
inline void KeepFirst(LSTATUS& first, LSTATUS status) {
  if (first == ERROR_SUCCESS) first = status;
}

/// Sets a text; the empty name is the key's default value.
inline LSTATUS SetRegistryText(HKEY key, const os::WideString& name, const os::WideString& text) {
  return RegSetValueExW(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                        static_cast<DWORD>((text.size() + 1) * sizeof(OLECHAR)));
}

/// A GUID as keys and values have it: "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
inline os::WideString RegistryName(REFGUID guid) {
  std::array<OLECHAR, 39> text{};
  StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return text.data();
}

/// A text of a key below HKEY_CLASSES_ROOT or another, by default the default one; empty when it
/// has none, or is no text.
inline os::WideString RegistryText(HKEY parent, const os::WideString& name,
                                   const os::WideString& value = {}) {
  RegKey key;
  DWORD type = 0;
  DWORD size = 0;
  if (key.Open(parent, name, KEY_READ) != ERROR_SUCCESS ||
      RegQueryValueExW(key.Get(), value.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
      type != REG_SZ) {
    return {};
  }
  os::WideString text(size / sizeof(OLECHAR), 0);
  if (RegQueryValueExW(key.Get(), value.c_str(), nullptr, nullptr,
                       reinterpret_cast<BYTE*>(text.data()), &size) != ERROR_SUCCESS) {
    return {};
  }
  return text.c_str();
}
