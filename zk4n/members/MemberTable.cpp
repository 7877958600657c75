#include "zk4n/members/MemberTable.h"

#include <algorithm>
#include <utility>

#include "server/interface/IviInherent.h"
#include "server/interface/ZentrelK4NLib.h"
#include "zk4n/members/MemberCall.h"

namespace members {
namespace {

template <auto kFunction>
Member Row(Kind kind, std::string_view name, std::initializer_list<internal::Named> names) {
  return internal::MakeMember<kFunction>(kFunction, kind, name, names);
}

template <typename T>
Interface Describe(std::vector<Member> list) {
  return {internal::NameOf<T>(), __uuidof(T), std::move(list)};
}

}  // namespace

bool Parameter::IsOut() const {
  return direction == Direction::kOut || direction == Direction::kInOut ||
         direction == Direction::kRetval;
}

const Member* Interface::Find(std::string_view member, Kind kind) const {
  const auto found = std::ranges::find_if(
      members, [&](const Member& entry) { return entry.name == member && entry.kind == kind; });
  return found == members.end() ? nullptr : &*found;
}

const std::vector<Interface>& Interfaces() {
  static const std::vector<Interface> table{
#include "zk4n/members/MemberRows.inc"
  };
  return table;
}

const Interface* FindInterface(REFIID id) {
  const auto found = std::ranges::find_if(
      Interfaces(), [&](const Interface& entry) { return IsEqualIID(entry.id, id) != 0; });
  return found == Interfaces().end() ? nullptr : &*found;
}

}  // namespace members
