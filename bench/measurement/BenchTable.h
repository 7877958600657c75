// The detector tables that the benchmarks share.
#pragma once

#include <cmath>
#include <cstdint>

#include "measurement/SimpleMatrix.h"

/// A smooth table over 10 MHz to 20 GHz and six decades of level; the level axis is linear, as in a
/// file.
inline CSimpleMatrix BenchTable(std::uint32_t frequencies, std::uint32_t levels) {
  CSimpleMatrix matrix;
  matrix.Resize(frequencies + 1, levels + 1);
  for (std::uint32_t f = 0; f < frequencies; ++f) {
    matrix.SetItem(f + 1, 0, 10.0 + 19990.0 * f / (frequencies - 1));
    for (std::uint32_t l = 0; l < levels; ++l) {
      const double decades = -2.5 + 6.0 * l / (levels - 1);
      matrix.SetItem(0, l + 1, std::pow(10.0, decades));
      matrix.SetItem(f + 1, l + 1, 10 * decades - 0.7 * std::sin(0.01 * f) + 0.013 * l);
    }
  }
  return matrix;
}
