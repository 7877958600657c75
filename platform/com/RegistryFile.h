// The file that holds the registry.
#pragma once

#include <functional>
#include <memory>

#include "platform/com/Com.h"
#include "platform/com/RegistryTree.h"

/// Reads the whole registry; a file that does not exist is an empty one. ERROR_BADDB when it is no
/// registry. What was read last is kept until the file changes: every error of a registered class
/// asks for its ProgID.
LSTATUS ReadRegistry(std::shared_ptr<const RegistryKey>& root);

/// Lets `change` work on the registry as it is now, and puts the result in place of the old file
/// when `change` gives ERROR_SUCCESS. Changes of all threads and processes happen one after the
/// other.
LSTATUS ChangeRegistry(const std::function<LSTATUS(RegistryKey& root)>& change);
