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
  std::function<void(const ParamValue&)> on_change;  ///< told the new value; may be empty
};

/// Looks values up by name; of several with one name the first counts.
class ParamsListOwner {
 public:
  void Add(NamedParam param);
  /// Stores the value and tells the item, unless it holds that value already. Throws
  /// std::invalid_argument
  /// ("Debug...") when there is no such name, GetValue too.
  void SetValue(std::string_view name, const ParamValue& value);
  /// A copy of the stored value.
  [[nodiscard]] ParamValue GetValue(std::string_view name) const;

 private:
  std::vector<NamedParam> params_;
};

}  // namespace uFilterParams
