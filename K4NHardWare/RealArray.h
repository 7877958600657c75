// A client's array of doubles while the driver looks at it.
#pragma once

#include <span>
#include <vector>

#include "platform/com/Com.h"

namespace k4n {

/// Locks a SAFEARRAY for its life time. The array must outlive it.
class RealArray {
 public:
  explicit RealArray(SAFEARRAY* array);
  ~RealArray();
  RealArray(const RealArray&) = delete;
  RealArray& operator=(const RealArray&) = delete;

  /// True for a one-dimensional array of doubles; only such an array is locked. In an array without
  /// a VARTYPE, as clients build them by hand, elements of eight bytes that are not pointers count
  /// as doubles.
  [[nodiscard]] bool HasRightType() const { return right_type_; }
  /// S_OK, or why the array could not be locked.
  [[nodiscard]] HRESULT locked() const { return locked_; }

  /// The elements, from the first one on, as many as an array with the bounds 0 to the upper bound
  /// has. Kept: the lower bound is ignored, so an array from 1 to n gives one value too many, its
  /// last one again, and an array from -1 loses its last one. An empty array gives none.
  [[nodiscard]] std::vector<double> Read() const;
  /// Writes values over those that Read gives, as far as the array has elements.
  void Write(std::span<const double> values) const;

  /// Leaves the array locked for good.
  void KeepLocked() { keep_locked_ = true; }

 private:
  SAFEARRAY* array_;
  bool right_type_ = false;
  HRESULT locked_ = E_INVALIDARG;
  bool keep_locked_ = false;
  std::span<double> elements_;
  std::size_t count_ = 0;  ///< as if the array started at 0
};

}  // namespace k4n
