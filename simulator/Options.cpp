#include "simulator/Options.h"

#include <asio/ip/address.hpp>
#include <cmath>
#include <stdexcept>

namespace simulator {

namespace {

void Require(bool holds, const char* what) {
  if (!holds) throw std::invalid_argument(what);
}

bool IsWithin(double value, double low, double high) {
  return std::isfinite(value) && value >= low && value <= high;
}

void ValidateDevice(const DeviceUnderTest& device) {
  constexpr double kHighest = 1e12;
  Require(IsWithin(device.centre, 1.0, kHighest), "device centre: 1 Hz to 1 THz");
  Require(IsWithin(device.width, 1.0, kHighest), "device width: 1 Hz to 1 THz");
  Require(device.order >= 1 && device.order <= 20, "device order: 1 to 20");
  for (const double decibels : {device.loss, device.isolation, device.return_loss}) {
    Require(IsWithin(decibels, 0.0, 300.0), "device loss, isolation and return loss: 0 to 300 dB");
  }
}

}  // namespace

void Validate(const Options& options) {
  asio::error_code not_numeric;
  asio::ip::make_address(options.address, not_numeric);
  Require(!not_numeric, "address: an IP address in numbers, such as 127.0.0.1 or ::1");
  // What a level and a frequency element can carry.
  constexpr double kLargestLevel = 127.0;
  constexpr double kLargestFrequency = 1e12;
  Require(IsWithin(options.min_frequency, 1.0, options.max_frequency) &&
              IsWithin(options.max_frequency, 1.0, kLargestFrequency),
          "frequency limits: 1 Hz to 1 THz, the lower not above the upper");
  Require(IsWithin(options.min_level, -kLargestLevel, options.max_level) &&
              IsWithin(options.max_level, -kLargestLevel, kLargestLevel),
          "level limits: -127 to 127 dBm, the lower not above the upper");
  Require(IsWithin(options.level_resolution, 0.0, kLargestLevel), "level resolution: 0 to 127 dB");
  Require(std::isfinite(options.initial_level), "initial level: a number");
  Require(options.power_variant >= 0 && options.power_variant <= 5, "power variant: 0 to 5");
  Require(options.attenuator_mode == 0 ||
              (options.attenuator_mode >= 2 && options.attenuator_mode <= 5),
          "attenuator mode: 0, or 2 to 5");
  Require(options.trigger_groups == 1 || options.trigger_groups == 2, "trigger groups: 1 or 2");
  Require(IsWithin(options.min_reference_frequency, 0.0, options.max_reference_frequency) &&
              IsWithin(options.max_reference_frequency, 0.0, UINT32_MAX),
          "reference limits: 0 to 4.29 GHz, the lower not above the upper");
  constexpr std::uint32_t kSecond = 1'000'000'000;
  Require(options.dwell_resolution <= kSecond && options.time_resolution <= kSecond,
          "dwell and time resolution: at most 1 s");
  Require(options.min_point_time >= std::chrono::seconds(0) &&
              options.min_point_time <= std::chrono::hours(1),
          "point time: 0 to 1 h");
  Require(options.response_delay >= std::chrono::seconds(0) &&
              options.response_delay <= std::chrono::hours(1),
          "response delay: 0 to 1 h");
  constexpr std::size_t kLongestText = 100;
  Require(options.serial_number.size() <= kLongestText && options.type.size() <= kLongestText,
          "serial number and type: at most 100 characters");
  Require(IsWithin(options.noise, 0.0, 100.0), "noise: 0 to 100 dB");
  ValidateDevice(options.device);
}

}  // namespace simulator
