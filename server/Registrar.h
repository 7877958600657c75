// The registrar: runs registration scripts against the registry, in either direction.
#pragma once

#include <string_view>

#include "platform/com/Com.h"
#include "server/RegistryScript.h"

/// For whom classes are registered.
enum class RegistrationScope {
  kMachine,  ///< all users; needs the rights of an administrator on Windows
  kUser,     ///< the current user
};

/// The part of the registry whose keys HKCR shows for the scope: HKEY_LOCAL_MACHINE's or
/// HKEY_CURRENT_USER's Software\Classes. Writing to HKCR itself would not do: where a user has a
/// key of that name already, the machine's registration would end in the user's part.
struct ClassesPlace {
  HKEY root;
  os::WideString path;
};
ClassesPlace ClassesOf(RegistrationScope scope);

/// A GUID as keys and values have it: "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
os::WideString RegistryName(REFGUID guid);

/// Runs scripts for one scope. A script is read whole before anything is changed.
class Registrar {
 public:
  Registrar(RegistrationScope scope, Replacements replacements)
      : scope_(scope), replacements_(std::move(replacements)) {}

  /// Makes the script's keys and values. Gives the first failing result: kScriptUnreadable, or the
  /// registry's code as an HRESULT (E_INVALIDARG for other values than texts where the registry
  /// holds texts alone, as it does elsewhere than on Windows).
  HRESULT Register(std::string_view script) const;

  /// Takes away the script's values and its keys, as each key's removal says. What is not there is
  /// no failure; after one, the rest is taken away all the same, and the first one is given.
  HRESULT Remove(std::string_view script) const;

  /// ERROR_BAD_FORMAT of Windows.
  static constexpr HRESULT kScriptUnreadable = static_cast<HRESULT>(0x8007000B);

 private:
  RegistrationScope scope_;
  Replacements replacements_;
};
