// The registrar: runs registration scripts against the registry, in either direction.
#pragma once

#include <string_view>

#include "platform/com/Com.h"
#include "server/RegistryScript.h"

namespace server {

/// For whom classes are registered.
enum class RegistrationScope {
  kMachine,  ///< all users; needs the rights of an administrator on Windows
  kUser,     ///< the current user
};

/// The part of the registry whose keys HKCR shows for the scope: HKEY_LOCAL_MACHINE's or
/// HKEY_CURRENT_USER's Software\Classes. HKCR itself must not be written to: if a user already has
/// a key of that name, the machine's registration would go into the user's part.
struct ClassesPlace {
  HKEY root;
  os::WideString path;
};
ClassesPlace ClassesOf(RegistrationScope scope);

/// Runs scripts for one scope. A script is read whole before anything is changed.
class Registrar {
 public:
  Registrar(RegistrationScope scope, Replacements replacements)
      : scope_(scope), replacements_(std::move(replacements)) {}

  /// Makes the script's keys and values. Returns the first failure: kScriptUnreadable, or the
  /// registry's code as an HRESULT. On Linux, where the registry holds texts only, any other value
  /// gives E_INVALIDARG.
  HRESULT Register(std::string_view script) const;

  /// Removes the script's values and its keys, each as its KeyRemoval says. A missing key or value
  /// is not a failure. After a failure the rest is still removed; returns the first failure.
  HRESULT Remove(std::string_view script) const;

  /// ERROR_BAD_FORMAT of Windows.
  static constexpr HRESULT kScriptUnreadable = static_cast<HRESULT>(0x8007000B);

 private:
  RegistrationScope scope_;
  Replacements replacements_;
};

}  // namespace server
