// A copy of a part of the registry, to put back what a change by others' code did there.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/com/Com.h"

/// A key with all that is in and below it, as it was when it was read. The key may have been
/// absent.
class RegistryCopy {
 public:
  /// Reads the key of that name below `parent`. A key that cannot be read whole is a failure, since
  /// it could not be put back.
  [[nodiscard]] LSTATUS Read(HKEY parent, const std::wstring& name);

  [[nodiscard]] bool Exists() const { return exists_; }

  /// Makes the key below `parent` what it was; only for one that existed. Only what differs is
  /// written, so that keys keep their security settings and nobody needs rights for what is as it
  /// was. A key that is gone is made anew with the access rights that it had; its owner is then who
  /// runs this. Goes on after a failure, and gives the first.
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
