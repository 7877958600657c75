#include "simulator/DeviceUnderTest.h"

#include <algorithm>
#include <cmath>

namespace simulator {

namespace {

double Decibels(double power_ratio) { return 10.0 * std::log10(power_ratio); }

// Attenuation of the low-pass prototype minus one, (f / cut-off)^(2 n), with the band-pass mapped
// onto it: 1 at both -3 dB points.
double PrototypeRatio(const DeviceUnderTest& device, double frequency) {
  const double detuning = frequency / device.centre - device.centre / frequency;
  return std::pow(std::abs(detuning) * device.centre / device.width, 2.0 * device.order);
}

}  // namespace

double DeviceUnderTest::Through(double frequency) const {
  double response = -isolation;
  if (kind == DeviceKind::kFlat) {
    response = -loss;
  } else if (kind == DeviceKind::kBandPass) {
    response = -loss - Decibels(1.0 + PrototypeRatio(*this, frequency));
  }
  return std::max(response, -isolation);
}

double DeviceUnderTest::Reflected(double frequency) const {
  double response = 0.0;
  if (kind == DeviceKind::kFlat) {
    response = -return_loss;
  } else if (kind == DeviceKind::kBandPass) {
    // What does not come through is sent back; 1 / (1 + 1 / r) holds for infinite r too.
    response = -Decibels(1.0 + 1.0 / PrototypeRatio(*this, frequency));
  }
  return std::max(response, -return_loss);
}

}  // namespace simulator
