#include "K4NHardWare/RealArray.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

bool IsRealVector(SAFEARRAY* array) {
  VARTYPE type = VT_EMPTY;
  return SafeArrayGetDim(array) == 1 && SafeArrayGetVartype(array, &type) == S_OK && type == VT_R8;
}

std::size_t CountFromZero(SAFEARRAY* array) {
  LONG lower = 0;
  LONG upper = -1;
  if (FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
      FAILED(SafeArrayGetUBound(array, 1, &upper))) {
    return 0;
  }
  const std::int64_t wanted = std::int64_t{upper} + 1;
  const std::int64_t present = std::int64_t{upper} - lower + 1;
  return static_cast<std::size_t>(std::max<std::int64_t>(std::min(wanted, present), 0));
}

}  // namespace

RealArray::RealArray(SAFEARRAY* array) : array_(array), right_type_(IsRealVector(array)) {
  if (!right_type_) return;
  void* data = nullptr;
  locked_ = SafeArrayAccessData(array_, &data);
  if (SUCCEEDED(locked_)) values_ = {static_cast<double*>(data), CountFromZero(array_)};
}

RealArray::~RealArray() {
  if (right_type_ && SUCCEEDED(locked_)) SafeArrayUnaccessData(array_);
}
