#include "K4NHardWare/RealArray.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace k4n {

namespace {

// Most values that a lower bound may add; no client means a larger lower bound.
constexpr std::size_t kMostMissing = 0x10000;

/// Feature flags of elements that are not plain numbers.
constexpr unsigned kOwnedElements =
    FADF_BSTR | FADF_UNKNOWN | FADF_HAVEIID | FADF_DISPATCH | FADF_VARIANT | FADF_RECORD;

bool HoldsReals(SAFEARRAY* array) {
  if (VARTYPE type = VT_EMPTY; SafeArrayGetVartype(array, &type) == S_OK) return type == VT_R8;
  return array->cbElements == sizeof(double) && (array->fFeatures & kOwnedElements) == 0;
}

/// A descriptor may exist without data.
bool IsRealVector(SAFEARRAY* array) {
  return SafeArrayGetDim(array) == 1 && HoldsReals(array) &&
         (array->pvData != nullptr || array->rgsabound[0].cElements == 0);
}

}  // namespace

RealArray::RealArray(SAFEARRAY* array) : array_(array), right_type_(IsRealVector(array)) {
  if (!right_type_) return;
  void* data = nullptr;
  locked_ = SafeArrayAccessData(array_, &data);
  if (FAILED(locked_)) return;
  const auto [size, lower] = array_->rgsabound[0];
  elements_ = {static_cast<double*>(data), size};
  const std::int64_t end = std::int64_t{lower} + size;
  if (end > 0 && size != 0) count_ = std::min(static_cast<std::size_t>(end), size + kMostMissing);
}

RealArray::~RealArray() {
  if (SUCCEEDED(locked_) && !keep_locked_) SafeArrayUnaccessData(array_);
}

std::vector<double> RealArray::Read() const {
  const auto present = elements_.first(std::min(count_, elements_.size()));
  std::vector<double> values(present.begin(), present.end());
  if (!values.empty()) values.resize(count_, values.back());
  return values;
}

void RealArray::Write(std::span<const double> values) const {
  std::ranges::copy(values.first(std::min({values.size(), count_, elements_.size()})),
                    elements_.begin());
}

}  // namespace k4n
