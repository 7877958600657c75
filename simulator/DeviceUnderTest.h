// What is connected between the instrument's output and its detectors.
#pragma once

namespace simulator {

enum class DeviceKind {
  kFlat,      ///< a through connection with a constant loss
  kOpen,      ///< nothing connected: the source is reflected, only leakage comes through
  kBandPass,  ///< a Butterworth band-pass
};

/// A passive device as its response in decibels; a test computes the expected trace with the same
/// two functions that the signal path uses.
struct DeviceUnderTest {
  DeviceKind kind = DeviceKind::kBandPass;
  double centre = 2.4e9;      ///< Hz, above 0; band-pass only
  double width = 4e8;         ///< Hz between the -3 dB points, above 0; band-pass only
  int order = 3;              ///< poles of the low-pass prototype, 1 to 20; band-pass only
  double loss = 1.5;          ///< dB, 0 or more: in the pass band, or of the flat connection
  double isolation = 50.0;    ///< dB, 0 or more: no less than this comes through anywhere
  double return_loss = 30.0;  ///< dB, 0 or more: no less than this is reflected anywhere

  /// Level behind the device relative to the level before it, dB, at a frequency in Hz above 0.
  [[nodiscard]] double Through(double frequency) const;
  /// Level that the device sends back relative to the level before it, dB.
  [[nodiscard]] double Reflected(double frequency) const;

  friend bool operator==(const DeviceUnderTest&, const DeviceUnderTest&) = default;
};

}  // namespace simulator
