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

  /// Whether this is a one-dimensional array of doubles; nothing is locked otherwise. Without a
  /// type mark, as clients make arrays by hand, eight bytes that are no pointers count as a double.
  [[nodiscard]] bool HasRightType() const { return right_type_; }
  /// S_OK, or why the array could not be locked.
  [[nodiscard]] HRESULT locked() const { return locked_; }

  /// As many elements as an array from 0 to the upper bound has, from the first one on. Kept: the
  /// lower bound does not count, so that an array from 1 to n gives one more than it has, which is
  /// its last one again, and an array from -1 loses its last one. None when the array has none.
  [[nodiscard]] std::vector<double> Read() const;
  /// Puts values in the place of those that Read gives, as far as the array has them.
  void Write(std::span<const double> values) const;

  /// Leaves the array locked for good.
  void KeepLocked() { keep_locked_ = true; }

 private:
  SAFEARRAY* array_;
  bool right_type_ = false;
  HRESULT locked_ = E_INVALIDARG;
  bool keep_locked_ = false;
  std::span<double> elements_;
  std::size_t count_ = 0;  // as if the array started at 0
};

}  // namespace k4n
