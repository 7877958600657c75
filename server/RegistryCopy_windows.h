// A copy of a part of the registry, to undo what the system's code changes there.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/com/Com.h"

namespace server {

/// A key with its values and subkeys at the time of reading. The key may have been absent.
class RegistryCopy {
 public:
  /// Reads the key of that name below `parent`. A key that cannot be read whole is a failure, since
  /// it could not be put back.
  [[nodiscard]] LSTATUS Read(HKEY parent, const std::wstring& name);

  [[nodiscard]] bool Exists() const { return exists_; }

  /// Restores the key below `parent`; only for a key that existed. Only differences are written, so
  /// that keys keep their security settings and unchanged keys need no rights. A deleted key is
  /// created again with its former access rights; its owner is then the current user. Continues
  /// after a failure and returns the first one.
  [[nodiscard]] LSTATUS Restore(HKEY parent) const;

 private:
  struct Value {
    DWORD type;
    std::vector<BYTE> data;
    bool operator==(const Value&) const = default;
  };

  LSTATUS ReadValues(HKEY key);
  LSTATUS ReadSubkeys(HKEY key);
  LSTATUS ReadAccess(HKEY key);
  [[nodiscard]] bool HasContentOf(const RegistryCopy& other) const;
  [[nodiscard]] LSTATUS RestoreValues(HKEY key, const RegistryCopy& now) const;
  [[nodiscard]] LSTATUS RestoreSubkeys(HKEY key, const RegistryCopy& now) const;

  std::wstring name_;
  bool exists_ = false;
  std::map<std::wstring, Value> values_;
  std::vector<RegistryCopy> subkeys_;
  std::vector<BYTE> access_;  ///< the discretionary access control list, in a descriptor
};

}  // namespace server
