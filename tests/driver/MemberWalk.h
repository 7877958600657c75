// Calling every member of the surface by its name: "RF.put Level", "Root.Close".
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/driver/DriverModule.h"
#include "zk4n/members/MemberTable.h"

namespace driver_test {

/// A member as the walk meets it.
struct Walked {
  std::string name;
  const members::Interface* interface_entry;
  const members::Member* member;

  /// False when it answers that it is not supported. How each says so is the console's script.
  [[nodiscard]] bool IsSupported() const;
  /// Whether it hands out an interface.
  [[nodiscard]] bool IsWay() const;
};

/// All members, interface by interface. IZentrelK4N is called Root, and the others lose this
/// beginning of their names.
const std::vector<Walked>& AllMembers();
/// Throws std::out_of_range when there is none of this name.
const Walked& MemberOf(std::string_view name);

struct ClassRow {
  CLSID class_id;
  std::vector<IID> interfaces;  ///< the first supports error information
};
/// The root's class, then those of its children.
const std::vector<ClassRow>& Classes();

/// The pointer of this interface to the object that has it.
ComPtr<IUnknown> ObjectOf(const Surface& surface, const IID& iid);

/// What a call gave: its result, and what the arguments that come out hold, as text: numbers,
/// texts, "object", "array"; none for what was not written.
struct Answer {
  HRESULT result;
  std::vector<std::string> written;
};

/// Calls with these numbers for what goes in, and 1 where they end; texts are "ChannelA", arrays
/// null. `null_out`: the number of the argument whose reference is null.
Answer Call(const Surface& surface, const Walked& walked, std::span<const double> numbers = {},
            std::optional<std::size_t> null_out = std::nullopt);
/// The one number that a get of this name gives; fails the test when it fails.
double NumberOf(const Surface& surface, std::string_view get);

}  // namespace driver_test
