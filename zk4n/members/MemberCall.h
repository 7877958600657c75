// Makes table entries of pointers to member functions: the types of the parameters, and the call.
#pragma once

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "zk4n/members/MemberTable.h"

namespace members::internal {

/// What a call finds in an argument that only comes out.
template <typename T>
constexpr T Mark() {
  if constexpr (std::is_same_v<T, double>) {
    return std::bit_cast<double>(0x7FF85AA5C33C0FF0u);  // one of many that are no number
  } else if constexpr (std::is_same_v<T, VARIANT_BOOL>) {
    return 0x5AA5;
  } else {
    return static_cast<T>(0x5AA5C33C);
  }
}

/// Whether two values have the same bits: a NaN equals itself.
template <typename T>
bool IsSame(T a, T b) {
  if constexpr (std::is_same_v<T, double>) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
  } else {
    return a == b;
  }
}

/// Enumerations travel as LONG.
template <typename T>
using Held = std::conditional_t<std::is_enum_v<T>, LONG, T>;

/// One argument on its way into a call and back: numbers by value.
template <typename T>
class Passed {
 public:
  explicit Passed(const Argument& argument)
      : value_(std::holds_alternative<Unset>(argument.value)
                   ? T{}
                   : static_cast<T>(std::get<Held<T>>(argument.value))) {}
  T Pass() { return value_; }
  void TakeBack(Argument& /*argument*/) {}

 private:
  T value_;
};

/// A text that goes in, which stays the caller's.
template <>
class Passed<BSTR> {
 public:
  explicit Passed(const Argument& argument)
      : text_(std::holds_alternative<Unset>(argument.value)
                  ? nullptr
                  : std::get<Bstr>(argument.value).Get()) {}
  BSTR Pass() { return text_; }
  void TakeBack(Argument& /*argument*/) {}

 private:
  BSTR text_;
};

/// Numbers by reference.
template <typename T>
class Passed<T*> {
 public:
  explicit Passed(const Argument& argument)
      : is_null_(std::holds_alternative<NullReference>(argument.value)),
        is_marked_(std::holds_alternative<Unset>(argument.value)),
        before_(is_null_ || is_marked_ ? Mark<T>()
                                       : static_cast<T>(std::get<Held<T>>(argument.value))),
        value_(before_) {}
  T* Pass() { return is_null_ ? nullptr : &value_; }
  void TakeBack(Argument& argument) {
    argument.written = !IsSame(value_, before_);
    if (is_null_ || (is_marked_ && !argument.written)) return;
    argument.value = static_cast<Held<T>>(value_);
  }

 private:
  bool is_null_;
  bool is_marked_;
  T before_;
  T value_;
};

/// What has an owner, by reference: `Owner` keeps it between calls, the call sees the bare pointer.
template <typename Owner, typename Pointer>
class PassedOwned {
 public:
  explicit PassedOwned(Argument& argument)
      : is_null_(std::holds_alternative<NullReference>(argument.value)),
        is_marked_(std::holds_alternative<Unset>(argument.value)) {
    if (!is_null_ && !is_marked_) before_ = std::get<Owner>(argument.value).Get();
    value_ = before_;
  }
  Pointer* Pass() { return is_null_ ? nullptr : &value_; }
  void TakeBack(Argument& argument) {
    argument.written = value_ != before_;
    if (!argument.written) return;
    if (!is_marked_) static_cast<void>(std::get<Owner>(argument.value).Detach());
    argument.value = Adopt(value_);
  }

 private:
  static Bstr Adopt(BSTR text) {
    Bstr owner;
    *owner.Put() = text;
    return owner;
  }
  static SafeArrayOwner Adopt(SAFEARRAY* array) { return SafeArrayOwner(array); }

  bool is_null_;
  bool is_marked_;
  Pointer before_ = nullptr;
  Pointer value_ = nullptr;
};

template <>
class Passed<BSTR*> : public PassedOwned<Bstr, BSTR> {
  using PassedOwned::PassedOwned;
};

template <>
class Passed<SAFEARRAY**> : public PassedOwned<SafeArrayOwner, SAFEARRAY*> {
  using PassedOwned::PassedOwned;
};

/// An interface that comes out. The mark is an address that is no object's.
template <typename T>
class Passed<T**> {
 public:
  explicit Passed(const Argument& argument)
      : is_null_(std::holds_alternative<NullReference>(argument.value)), value_(NoObject()) {}
  T** Pass() { return is_null_ ? nullptr : &value_; }
  void TakeBack(Argument& argument) {
    argument.written = value_ != NoObject();
    if (argument.written) argument.value = ComPtr<IUnknown>::Adopt(value_);
  }

 private:
  static T* NoObject() {
    alignas(T) static char place[sizeof(T)];
    return reinterpret_cast<T*>(place);
  }

  bool is_null_;
  T* value_;
};

template <auto kFunction, typename T, typename... P, std::size_t... I>
HRESULT Invoke(IUnknown* object, [[maybe_unused]] std::span<Argument> arguments,
               std::index_sequence<I...> /*places*/) {
  std::tuple<Passed<P>...> passed{arguments[I]...};
  const HRESULT result = (static_cast<T*>(object)->*kFunction)(std::get<I>(passed).Pass()...);
  (std::get<I>(passed).TakeBack(arguments[I]), ...);
  return result;
}

/// The name of an interface or enumeration of the header: their mangled names are a length and the
/// name itself.
template <typename T>
std::string_view NameOf() {
  const std::string_view name = typeid(T).name();
  return name.substr(name.find_first_not_of("0123456789"));
}

/// What the table's text tells of a parameter; the rest follows from the function's type.
struct Named {
  std::string_view name;
  std::string_view unit = {};
  Direction direction = Direction::kIn;  ///< also where the type tells that it is a retval
  bool optional = false;
};

template <typename T>
struct TypeTraits {
  static constexpr Type kType = std::is_enum_v<T> ? Type::kEnum : Type::kInterface;
  static std::string_view Name() { return NameOf<T>(); }
};
template <>
struct TypeTraits<LONG> {
  static constexpr Type kType = Type::kLong;
  static std::string_view Name() { return "long"; }
};
template <>
struct TypeTraits<double> {
  static constexpr Type kType = Type::kDouble;
  static std::string_view Name() { return "double"; }
};
template <>
struct TypeTraits<VARIANT_BOOL> {
  static constexpr Type kType = Type::kBool;
  static std::string_view Name() { return "VARIANT_BOOL"; }
};
template <>
struct TypeTraits<BSTR> {
  static constexpr Type kType = Type::kText;
  static std::string_view Name() { return "BSTR"; }
};
template <>
struct TypeTraits<SAFEARRAY*> {
  static constexpr Type kType = Type::kArray;
  static std::string_view Name() { return "SAFEARRAY(double)"; }
};
template <typename T>
struct TypeTraits<T*> : TypeTraits<T> {};
template <>
struct TypeTraits<BSTR*> : TypeTraits<BSTR> {};
template <>
struct TypeTraits<SAFEARRAY**> : TypeTraits<SAFEARRAY*> {};

template <typename P>
Parameter Describe(const Named& named) {
  // Arrays go in by reference; whatever else is a reference comes out.
  constexpr bool kComesOut =
      std::is_pointer_v<P> && !std::is_same_v<P, BSTR> && !std::is_same_v<P, SAFEARRAY**>;
  Parameter parameter;
  parameter.name = named.name;
  const bool is_retval = kComesOut && named.direction == Direction::kIn;
  parameter.direction = is_retval ? Direction::kRetval : named.direction;
  parameter.type = TypeTraits<P>::kType;
  parameter.type_name = TypeTraits<P>::Name();
  parameter.optional = named.optional;
  parameter.unit = named.unit;
  if constexpr (TypeTraits<P>::kType == Type::kInterface) {
    parameter.interface_id = __uuidof(std::remove_pointer_t<std::remove_pointer_t<P>>);
  }
  return parameter;
}

/// Both systems' compilers keep a virtual function's place in bytes in the first half of the
/// pointer to it; its lowest bit may be a flag.
template <typename Function>
int SlotOf(Function function) {
  struct Halves {
    std::uintptr_t place;
    std::uintptr_t adjustment;
  };
  return static_cast<int>(std::bit_cast<Halves>(function).place / sizeof(void*));
}

template <auto kFunction, typename T, typename... P>
Member MakeMember(HRESULT (STDMETHODCALLTYPE T::* /*function*/)(P...), Kind kind,
                  std::string_view name, std::initializer_list<Named> names) {
  if (names.size() != sizeof...(P)) throw std::logic_error("parameters of " + std::string(name));
  Member member{name, kind, SlotOf(kFunction), {}, {}};
  [[maybe_unused]] const Named* next = names.begin();
  (member.parameters.push_back(Describe<P>(*next++)), ...);
  member.function = [](IUnknown* object, std::span<Argument> arguments) {
    if (arguments.size() != sizeof...(P)) throw std::invalid_argument("number of arguments");
    return Invoke<kFunction, T, P...>(object, arguments, std::index_sequence_for<P...>());
  };
  return member;
}

}  // namespace members::internal
