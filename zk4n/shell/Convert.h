// Between what is typed and what members take.
#pragma once

#include <span>
#include <vector>

#include "zk4n/members/MemberTable.h"
#include "zk4n/shell/Command.h"

namespace shell {

/// What the parameter takes for a literal. Throws Fault for one of another type or out of range,
/// std::bad_alloc without memory.
members::Value Convert(const members::Parameter& parameter, const Literal& literal);

/// Arguments for all parameters of a member; those that were not typed are left to the call. Throws
/// Fault for too few or too many, too.
std::vector<members::Argument> ConvertAll(const members::Member& member,
                                          std::span<const Literal> typed);

}  // namespace shell
