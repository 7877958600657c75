#include "driver/ModuleLock.h"

#include <atomic>

namespace module_lock {
namespace {

std::atomic<long> lock_count = 0;

}  // namespace

void Add() { ++lock_count; }

void Remove() { --lock_count; }

bool IsHeld() { return lock_count != 0; }

}  // namespace module_lock
