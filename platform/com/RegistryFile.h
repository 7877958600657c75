// The files that hold the registry: the user's own, and the machine's, which all read and only an
// administrator may write. ZENTREL_REGISTRY names one file for both.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/com/Com.h"
#include "platform/com/RegistryTree.h"

inline constexpr std::u16string_view kUserRoot = u"HKEY_CURRENT_USER";
inline constexpr std::u16string_view kMachineRoot = u"HKEY_LOCAL_MACHINE";

/// Reads the whole registry; a file that does not exist is an empty one. ERROR_BADDB when it is no
/// registry. What was read last is kept until the file changes: every error of a registered class
/// asks for its ProgID.
LSTATUS ReadRegistry(std::shared_ptr<const RegistryKey>& root);

/// Lets `change` work on the registry as it is now, and puts the result in place of the old files
/// when `change` gives ERROR_SUCCESS. `path` is where it looks and changes: below one root, or
/// empty for any. ERROR_ACCESS_DENIED when the user may not write what changed. Changes of all
/// threads and processes happen one after the other.
LSTATUS ChangeRegistry(std::u16string_view path,
                       const std::function<LSTATUS(RegistryKey& root)>& change);
