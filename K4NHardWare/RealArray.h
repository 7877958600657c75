// A client's array of doubles while the driver looks at it.
#pragma once

#include <span>

#include "platform/com/Com.h"

/// Locks a SAFEARRAY for its life time. The array must outlive it.
class RealArray {
 public:
  explicit RealArray(SAFEARRAY* array);
  ~RealArray();
  RealArray(const RealArray&) = delete;
  RealArray& operator=(const RealArray&) = delete;

  /// Whether this is a one-dimensional array of doubles; nothing is locked otherwise.
  [[nodiscard]] bool HasRightType() const { return right_type_; }
  /// S_OK, or why the array could not be locked.
  [[nodiscard]] HRESULT locked() const { return locked_; }

  /// The elements, upper bound + 1 of them as if the array started at 0, but never more than it
  /// has. A client's array from 1 to n is thus taken whole; one from -1 loses its last element.
  [[nodiscard]] std::span<double> values() const { return values_; }

 private:
  SAFEARRAY* array_;
  bool right_type_ = false;
  HRESULT locked_ = E_INVALIDARG;
  std::span<double> values_;
};
