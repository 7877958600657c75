#include "zk4n/shell/Convert.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "platform/os/Text.h"

namespace shell {
namespace {

using members::Parameter;
using members::Type;

[[noreturn]] void Refuse(const Parameter& parameter, const std::string& needed) {
  throw Fault((parameter.name.empty() ? "the value" : std::string(parameter.name)) + " must be " +
              needed);
}

/// A whole number; in hexadecimal also the bits of a negative one.
template <typename Integer>
Integer ToInteger(const Parameter& parameter, const Number& number) {
  using Limits = std::numeric_limits<Integer>;
  constexpr double kHighestBits = std::numeric_limits<std::make_unsigned_t<Integer>>::max();
  const double highest = number.is_hexadecimal ? kHighestBits : Limits::max();
  if (number.value != std::trunc(number.value) || number.value < Limits::min() ||
      number.value > highest) {
    Refuse(parameter, "a whole number of " + std::to_string(8 * sizeof(Integer)) + " bits");
  }
  return static_cast<Integer>(static_cast<std::int64_t>(number.value));
}

SafeArrayOwner ToArray(const Array& array) {
  SafeArrayOwner owner(
      SafeArrayCreateVector(VT_R8, array.lower_bound, static_cast<ULONG>(array.values.size())));
  const SafeArrayAccess<double> access(owner.Get());
  if (FAILED(access.Result())) throw std::bad_alloc();
  std::ranges::copy(array.values, access.Values().begin());
  return owner;
}

}  // namespace

members::Value Convert(const Parameter& parameter, const Literal& literal) {
  const bool is_null = std::holds_alternative<Null>(literal);
  const auto* const number = std::get_if<Number>(&literal);
  switch (parameter.type) {
    case Type::kDouble:
      if (number != nullptr) return number->value;
      Refuse(parameter, "a number");
    case Type::kLong:
    case Type::kEnum:
      if (number != nullptr) return ToInteger<LONG>(parameter, *number);
      Refuse(parameter, "a whole number");
    case Type::kBool:
      if (const bool* const truth = std::get_if<bool>(&literal)) {
        return *truth ? VARIANT_TRUE : VARIANT_FALSE;
      }
      if (number != nullptr) return ToInteger<VARIANT_BOOL>(parameter, *number);
      Refuse(parameter, "true, false or a whole number");
    case Type::kText:
      if (is_null) return Bstr();
      if (const auto* const text = std::get_if<std::string>(&literal)) {
        return Bstr(os::ToWide(*text, os::kUtf8CodePage));
      }
      Refuse(parameter, "a text in quotes or null");
    case Type::kArray:
      if (is_null) return SafeArrayOwner();
      if (const auto* const array = std::get_if<Array>(&literal)) return ToArray(*array);
      Refuse(parameter, "an array [...] or null");
    case Type::kInterface:
      break;
  }
  Refuse(parameter, "left out");
}

std::vector<members::Argument> ConvertAll(const members::Member& member,
                                          std::span<const Literal> typed) {
  std::vector<members::Argument> arguments(member.parameters.size());
  std::size_t taken = 0;
  std::size_t needed = 0;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Parameter& parameter = member.parameters[i];
    const bool only_comes_out =
        parameter.IsOut() && parameter.direction != members::Direction::kInOut;
    if (only_comes_out) continue;
    if (!parameter.IsOut() && !parameter.optional) ++needed;
    if (taken < typed.size()) arguments[i].value = Convert(parameter, typed[taken++]);
  }
  if (typed.size() < needed || typed.size() > taken) {
    throw Fault(std::string(member.name) + " takes " + std::to_string(needed) + " arguments, not " +
                std::to_string(typed.size()));
  }
  return arguments;
}

}  // namespace shell
