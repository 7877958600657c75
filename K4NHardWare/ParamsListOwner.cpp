#include "K4NHardWare/ParamsListOwner.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace uFilterParams {

void ParamsListOwner::Add(NamedParam param) { params_.push_back(std::move(param)); }

void ParamsListOwner::SetValue(std::string_view name, const ParamValue& value) {
  const auto param = std::ranges::find(params_, name, &NamedParam::name);
  if (param == params_.end()) {
    throw std::invalid_argument(
        "Debug. WrongParametrName. uFilterParams::ParamsListOwner::SetValue");
  }
  if (param->value == value) return;
  param->value = value;
  if (param->on_change) param->on_change(param->value);
}

ParamValue ParamsListOwner::GetValue(std::string_view name) const {
  const auto param = std::ranges::find(params_, name, &NamedParam::name);
  if (param == params_.end()) {
    throw std::invalid_argument(
        "Debug. WrongParametrName. uFilterParams::ParamsListOwner::GetValue");
  }
  return param->value;
}

}  // namespace uFilterParams
