#include "server/RegistryCopy_windows.h"

#include <algorithm>

#include "platform/com/RegKey.h"

namespace server {

LSTATUS RegistryCopy::Read(HKEY parent, const std::wstring& name) {
  *this = {};
  name_ = name;
  RegKey key;
  LSTATUS status = key.Open(parent, name_, KEY_READ);
  if (status == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
  if (status == ERROR_SUCCESS) status = ReadValues(key.Get());
  if (status == ERROR_SUCCESS) status = ReadAccess(key.Get());
  if (status == ERROR_SUCCESS) status = ReadSubkeys(key.Get());
  exists_ = status == ERROR_SUCCESS;
  return status;
}

LSTATUS RegistryCopy::Restore(HKEY parent) const {
  RegistryCopy now;
  LSTATUS first = now.Read(parent, name_);
  if (first != ERROR_SUCCESS || HasContentOf(now)) return first;
  RegKey key;
  if (now.exists_) {
    first = key.Open(parent, name_, KEY_READ | KEY_WRITE);
  } else if ((first = key.Create(parent, name_)) == ERROR_SUCCESS) {
    first =
        RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, const_cast<BYTE*>(access_.data()));
  }
  if (key.Get() == nullptr) return first;
  KeepFirst(first, RestoreValues(key.Get(), now));
  KeepFirst(first, RestoreSubkeys(key.Get(), now));
  return first;
}

LSTATUS RegistryCopy::ReadValues(HKEY key) {
  DWORD longest_name = 0;
  DWORD largest = 0;
  const LSTATUS measured =
      RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       &longest_name, &largest, nullptr, nullptr);
  if (measured != ERROR_SUCCESS) return measured;
  std::wstring name(longest_name + 1, 0);
  std::vector<BYTE> data(largest + 1);
  for (DWORD index = 0;; ++index) {
    DWORD length = longest_name + 1;
    DWORD size = largest + 1;
    DWORD type = 0;
    const LSTATUS status =
        RegEnumValueW(key, index, name.data(), &length, nullptr, &type, data.data(), &size);
    if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    values_[name.substr(0, length)] = {type, {data.begin(), data.begin() + size}};
  }
}

LSTATUS RegistryCopy::ReadSubkeys(HKEY key) {
  constexpr DWORD kLongestName = 256;
  for (DWORD index = 0;; ++index) {
    wchar_t name[kLongestName] = {};
    DWORD length = kLongestName;
    LSTATUS status = RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status == ERROR_SUCCESS) status = subkeys_.emplace_back().Read(key, name);
    if (status != ERROR_SUCCESS) return status;
  }
}

LSTATUS RegistryCopy::ReadAccess(HKEY key) {
  DWORD size = 0;
  LSTATUS status = RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, nullptr, &size);
  if (status != ERROR_INSUFFICIENT_BUFFER) return status;
  access_.resize(size);
  return RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, access_.data(), &size);
}

bool RegistryCopy::HasContentOf(const RegistryCopy& other) const {
  return exists_ == other.exists_ && values_ == other.values_ &&
         std::equal(subkeys_.begin(), subkeys_.end(), other.subkeys_.begin(), other.subkeys_.end(),
                    [](const RegistryCopy& a, const RegistryCopy& b) {
                      return a.name_ == b.name_ && a.HasContentOf(b);
                    });
}

LSTATUS RegistryCopy::RestoreValues(HKEY key, const RegistryCopy& now) const {
  LSTATUS first = ERROR_SUCCESS;
  for (const auto& [name, value] : now.values_) {
    if (!values_.contains(name)) KeepFirst(first, RegDeleteValueW(key, name.c_str()));
  }
  for (const auto& [name, value] : values_) {
    const auto found = now.values_.find(name);
    if (found != now.values_.end() && found->second == value) continue;
    KeepFirst(first, RegSetValueExW(key, name.c_str(), 0, value.type, value.data.data(),
                                    static_cast<DWORD>(value.data.size())));
  }
  return first;
}

LSTATUS RegistryCopy::RestoreSubkeys(HKEY key, const RegistryCopy& now) const {
  LSTATUS first = ERROR_SUCCESS;
  for (const RegistryCopy& subkey : now.subkeys_) {
    const bool was_there =
        std::any_of(subkeys_.begin(), subkeys_.end(),
                    [&subkey](const RegistryCopy& copy) { return copy.name_ == subkey.name_; });
    if (!was_there) KeepFirst(first, RegDeleteTreeW(key, subkey.name_.c_str()));
  }
  for (const RegistryCopy& subkey : subkeys_) KeepFirst(first, subkey.Restore(key));
  return first;
}

}  // namespace server
