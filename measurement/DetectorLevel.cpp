#include "measurement/DetectorLevel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace measurement {

namespace {

// 1 / ln 10 and log10 2, each as a sum. The first parts are short enough for exact products.
constexpr double kPerNeperHigh = 0x1.bcb7b1p-2;
constexpr double kPerNeperLow = 0x1.49b9438ca9aaep-28;
constexpr double kPerOctaveHigh = 0x1.34413509f6p-2;
constexpr double kPerOctaveLow = 0x1.9fef311f12b36p-42;

constexpr std::uint64_t kRootOfHalf = 0x3fe6a09e667f3bcd;  // the bits of sqrt(0.5)
constexpr std::uint64_t kBiasedOne = 0x3ff0000000000000;   // the bits of 1
constexpr std::uint64_t kTwoTo52 = 0x4330000000000000;     // the bits of 2^52, whose unit is 1
constexpr int kMantissaBits = 52;

/// The first bits of a number: few enough for an exact product with another such number.
double FirstBits(double x) {
  return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) & ~0x7ffffffULL);
}

/// The sum of 2 z^k / (2 k + 1) over k = 1 to 10, for z up to 0.03. Odd and even terms are summed
/// apart, so that the processor computes both in parallel.
double SeriesTail(double z) {
  const double w = z * z;
  const double odd = 2.0 / 3 + w * (2.0 / 7 + w * (2.0 / 11 + w * (2.0 / 15 + w * (2.0 / 19))));
  const double even = 2.0 / 5 + w * (2.0 / 9 + w * (2.0 / 13 + w * (2.0 / 17 + w * (2.0 / 21))));
  return z * odd + w * even;
}

/// Log10 for normal positive numbers; meaningless for any other. No branches and no conversions, so
/// that the compiler can vectorise it.
inline double Log10OfNormal(double x) {
  // x is 2^octaves times a number from sqrt(0.5) to sqrt(2), which is 1 + f.
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(x);
  const std::uint64_t biased = (bits + (kBiasedOne - kRootOfHalf)) >> kMantissaBits;
  const double octaves = std::bit_cast<double>(biased | kTwoTo52) - (0x1p52 + 0x3ff);
  const double f = std::bit_cast<double>(bits + kBiasedOne - (biased << kMantissaBits)) - 1.0;
  // ln(1 + f) = 2 artanh(s), of which f is the part without an error.
  const double s = f / (2.0 + f);
  const double half_square = 0.5 * f * f;
  const double rest = half_square - s * (half_square + SeriesTail(s * s));
  const double high = FirstBits(f - rest);
  const double low = (f - high) - rest;

  const double whole = octaves * kPerOctaveHigh;
  const double part = high * kPerNeperHigh;
  const double sum = whole + part;
  const double lost = (whole - sum) + part;
  return sum + (lost + low * kPerNeperHigh + (high + low) * kPerNeperLow + octaves * kPerOctaveLow);
}

/// Readings up to this one get the lowest level, -3, which is its logarithm to the last bit.
constexpr double kSmallestReading = 0.001;

}  // namespace

double Log10(double x) {
  constexpr double kSmallestNormal = 0x1p-1022;
  if (!(x >= kSmallestNormal) || std::isinf(x)) {
    return x > 0.0 && !std::isinf(x) ? Log10(x * 0x1p54) - 54 * (kPerOctaveHigh + kPerOctaveLow)
                                     : std::log10(x);
  }
  return Log10OfNormal(x);
}

double DetectorLevel(double reading) { return Log10OfNormal(std::max(reading, kSmallestReading)); }

void DetectorLevels(std::span<double> readings) {
  // Plain loops of a fixed count, so that the compiler vectorises them.
  constexpr std::size_t kGroup = 64;
  std::size_t first = 0;
  for (; first + kGroup <= readings.size(); first += kGroup) {
    double* const group = &readings[first];
    for (std::size_t i = 0; i < kGroup; ++i) group[i] = std::max(group[i], kSmallestReading);
    for (std::size_t i = 0; i < kGroup; ++i) group[i] = Log10OfNormal(group[i]);
  }
  for (double& reading : readings.subspan(first)) reading = DetectorLevel(reading);
}

}  // namespace measurement
