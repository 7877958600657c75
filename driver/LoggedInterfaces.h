// Interfaces that write each call into the call log.
#pragma once

#include "platform/com/Com.h"

/// Takes a reference to an interface of an object and gives one to an interface that forwards every
/// call to it, and writes a line about it: the object's identity, the member, what goes in, the
/// result, after S_OK what comes out, the microseconds that it took. Results, error information and
/// what members read and write are those of the call alone. What is no interface of the published
/// surface is given back as it is, as everything is without memory.
IUnknown* Logged(REFIID iid, IUnknown* target, const IUnknown* identity) noexcept;
