// Arrays of doubles as clients pass them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/com/Raii.h"

inline SafeArrayOwner Doubles(const std::vector<double>& values, LONG lower = 0) {
  SafeArrayOwner array(SafeArrayCreateVector(VT_R8, lower, static_cast<ULONG>(values.size())));
  const SafeArrayAccess<double> access(array.Get());
  std::ranges::copy(values, access.Values().begin());
  return array;
}
inline std::vector<double> ValuesOf(SAFEARRAY* array) {
  const SafeArrayAccess<double> access(array);
  EXPECT_EQ(access.Result(), S_OK);
  return {access.Values().begin(), access.Values().end()};
}
