// A registry for one test, and short forms of the registry's functions.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/com/Com.h"
#include "platform/com/RegKey.h"
#include "platform/os/Text.h"
#include "tests/platform/EnvironmentVariable.h"
#include "tests/platform/TemporaryFolder.h"

/// Creates or opens a key, and closes it.
class Key {
 public:
  Key(HKEY parent, const os::WideString& name) {
    result_ = RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &key_, &disposition_);
  }
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  [[nodiscard]] HKEY Get() const { return key_; }
  [[nodiscard]] LSTATUS Result() const { return result_; }
  [[nodiscard]] DWORD Disposition() const { return disposition_; }

 private:
  HKEY key_ = nullptr;
  LSTATUS result_;
  DWORD disposition_ = 0;
};

inline LSTATUS SetText(HKEY key, const OLECHAR* name, const os::WideString& text) {
  return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                        static_cast<DWORD>((text.size() + 1) * sizeof(OLECHAR)));
}

/// The text, or "error" and the code.
inline os::WideString TextOf(HKEY key, const OLECHAR* name) {
  OLECHAR buffer[100] = {};
  DWORD size = sizeof(buffer);
  const LSTATUS result =
      RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size);
  if (result != ERROR_SUCCESS) {
    return os::ToWide("error " + std::to_string(result), os::kUtf8CodePage);
  }
  return buffer;
}

inline bool KeyExists(HKEY parent, const OLECHAR* name) {
  return RegKey().Open(parent, name, KEY_READ) == ERROR_SUCCESS;
}

/// The names of its subkeys, and the result that ends them.
inline std::pair<std::vector<os::WideString>, LSTATUS> NamesIn(HKEY key) {
  std::vector<os::WideString> names;
  for (OLECHAR name[100] = {};;) {
    DWORD length = 100;
    const LSTATUS result = RegEnumKeyExW(key, static_cast<DWORD>(names.size()), name, &length,
                                         nullptr, nullptr, nullptr, nullptr);
    if (result != ERROR_SUCCESS) return {names, result};
    names.emplace_back(name, length);
  }
}

/// Elsewhere than on Windows, the tests have a registry file of their own.
class RegistryTest : public testing::Test {
#ifndef _WIN32
 protected:
  [[nodiscard]] std::filesystem::path File() const { return folder_.path() / "new" / "registry"; }

 private:
  const TemporaryFolder folder_;
  const EnvironmentVariable variable_{"ZENTREL_REGISTRY", File()};
#endif
};
