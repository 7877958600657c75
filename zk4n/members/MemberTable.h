// Every member of the driver's COM surface, described and callable by name.
//
// The table holds the interfaces of the type library and the two inherent interfaces that the root
// object answers a query for, IIviDriverIdentity and IIviDriverOperation; each with its members in
// the order of their slots. Tests compare it with the published surface.
#pragma once

#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"

namespace members {

enum class Kind { kGet, kPut, kMethod };

/// kUnstated: the type library gives no direction, which callers take for kIn.
enum class Direction { kIn, kOut, kInOut, kRetval, kUnstated };

enum class Type { kLong, kDouble, kBool, kEnum, kText, kArray, kInterface };

struct Parameter {
  std::string_view name;  ///< empty for the value of a put
  Direction direction = Direction::kIn;
  Type type = Type::kLong;
  /// "long", "double", "VARIANT_BOOL", "BSTR", "SAFEARRAY(double)", or the name of the enumeration
  /// or interface; without the stars of a reference.
  std::string_view type_name;
  bool optional = false;
  /// "Hz", "dBm", "dB", "s", "ms"; empty for none.
  std::string_view unit;
  IID interface_id{};  ///< of Type::kInterface

  /// Whether the call may write it; not so for arrays passed in, though members correct their
  /// elements.
  [[nodiscard]] bool IsOut() const;
};

/// An argument without a value. For a parameter that goes in: zero or null. For one that comes out:
/// the call finds a mark in it, so that the caller sees whether the member wrote it.
struct Unset {};
/// For a parameter passed by reference: the reference itself is null.
struct NullReference {};

/// One value: enumerations are LONG; a null Bstr is a null text; a SafeArrayOwner may own any
/// array, or none; an interface is a pointer of exactly the parameter's interface.
using Value = std::variant<Unset, NullReference, LONG, double, VARIANT_BOOL, Bstr, SafeArrayOwner,
                           ComPtr<IUnknown>>;

struct Argument {
  Value value;
  /// After a call, for a parameter that comes out: it holds other than what the call found there.
  bool written = false;
};

struct Member {
  std::string_view name;
  Kind kind = Kind::kMethod;
  /// The place in the interface's table of functions; 0 to 2 are those of IUnknown.
  int slot = 0;
  std::vector<Parameter> parameters;
  HRESULT (*function)(IUnknown* object, std::span<Argument> arguments) = nullptr;

  /// Calls the member. `object` is a pointer of the interface that has it; `arguments` are as many
  /// as the parameters, in their order. Afterwards the arguments that come out hold what the call
  /// left in them: a marked one that was not written is Unset again. Texts and arrays are marked
  /// with null, since a member may free what it finds there: a null that it writes cannot be told.
  /// A text, array or interface that was passed in such an argument belongs to the member once it
  /// is written over. Throws std::invalid_argument for another number of arguments and
  /// std::bad_variant_access for a value of another type.
  HRESULT Call(IUnknown* object, std::span<Argument> arguments) const {
    return function(object, arguments);
  }
};

struct Interface {
  std::string_view name;
  IID id{};
  std::vector<Member> members;

  /// Null when it has no such member.
  [[nodiscard]] const Member* Find(std::string_view member, Kind kind) const;
};

/// All interfaces; the first is the root object's, IZentrelK4N. Never changes.
const std::vector<Interface>& Interfaces();

/// Null when the table does not have it.
const Interface* FindInterface(REFIID id);

}  // namespace members
