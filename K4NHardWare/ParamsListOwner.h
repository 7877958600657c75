// A small list of named values.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace uFilterParams {

using ParamValue = std::variant<std::monostate, bool, std::int32_t, double, std::string>;

struct NamedParam {
  std::string name;
  ParamValue value;
  std::function<void(const ParamValue&)> on_change;  ///< called with the new value; may be empty
};

/// Looks values up by name; the first one of several with the same name is used.
class ParamsListOwner {
 public:
  void Add(NamedParam param);
  /// Stores the value and calls on_change, unless the item has that value already. Throws
  /// std::invalid_argument ("Debug...") if there is no such name, as GetValue does.
  void SetValue(std::string_view name, const ParamValue& value);
  /// A copy of the stored value.
  [[nodiscard]] ParamValue GetValue(std::string_view name) const;

 private:
  std::vector<NamedParam> params_;
};

}  // namespace uFilterParams
