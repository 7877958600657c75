#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "simulator/DeviceUnderTest.h"
#include "simulator/Options.h"

namespace simulator {
namespace {

TEST(DeviceUnderTest, BandPassHasItsLossItsEdgesAndItsIsolation) {
  DeviceUnderTest device;
  device.centre = 2.4e9;
  device.width = 4e8;
  device.loss = 1.5;
  device.isolation = 50.0;
  EXPECT_DOUBLE_EQ(device.Through(2.4e9), -1.5);
  // The edges lie geometrically around the centre, the width apart.
  const double lower = -2e8 + std::hypot(2e8, 2.4e9);
  for (const double edge : {lower, lower + 4e8}) {
    EXPECT_NEAR(device.Through(edge), -1.5 - 10 * std::log10(2.0), 1e-9) << edge;
    EXPECT_NEAR(device.Reflected(edge), -10 * std::log10(2.0), 1e-9) << edge;
  }
  EXPECT_EQ(device.Through(1e7), -50.0);
  EXPECT_EQ(device.Through(2e10), -50.0);
  EXPECT_EQ(device.Reflected(2.4e9), -30.0);
  EXPECT_NEAR(device.Reflected(1e7), 0.0, 1e-6);
}

TEST(DeviceUnderTest, FlatAndOpenDoNotDependOnTheFrequency) {
  DeviceUnderTest flat;
  flat.kind = DeviceKind::kFlat;
  DeviceUnderTest open;
  open.kind = DeviceKind::kOpen;
  for (const double frequency : {1e7, 2.4e9, 2e10}) {
    EXPECT_EQ(flat.Through(frequency), -1.5);
    EXPECT_EQ(flat.Reflected(frequency), -30.0);
    EXPECT_EQ(open.Through(frequency), -50.0);
    EXPECT_EQ(open.Reflected(frequency), 0.0);
  }
}

constexpr const char* kFrequency = "frequency limits: 1 Hz to 1 THz, the lower not above the upper";
constexpr const char* kLevelLimits = "level limits: -127 to 127 dBm, the lower not above the upper";
constexpr const char* kReference = "reference limits: 0 to 4.29 GHz, the lower not above the upper";
constexpr const char* kDecibels = "device loss, isolation and return loss: 0 to 300 dB";
using std::chrono::hours;
using std::chrono::nanoseconds;

struct Refused {
  const char* told;
  void (*spoil)(Options&);
};
// clang-format off
const Refused kRefused[] = {
    {"address: an IP address in numbers, such as 127.0.0.1 or ::1", [](Options& o) { o.address = "localhost"; }},
    {kFrequency, [](Options& o) { o.min_frequency = 3e10; }},
    {kFrequency, [](Options& o) { o.min_frequency = 0.9; }},
    {kFrequency, [](Options& o) { o.max_frequency = 1.1e12; }},
    {kLevelLimits, [](Options& o) { o.max_level = -80.0; }},
    {kLevelLimits, [](Options& o) { o.min_level = -127.5; }},
    {kLevelLimits, [](Options& o) { o.max_level = 127.5; }},
    {"level resolution: 0 to 127 dB", [](Options& o) { o.level_resolution = -0.1; }},
    {"initial level: a number", [](Options& o) { o.initial_level = std::nan(""); }},
    {"power variant: 0 to 5", [](Options& o) { o.power_variant = 6; }},
    {"power variant: 0 to 5", [](Options& o) { o.power_variant = -1; }},
    {"attenuator mode: 0, or 2 to 5", [](Options& o) { o.attenuator_mode = 1; }},
    {"attenuator mode: 0, or 2 to 5", [](Options& o) { o.attenuator_mode = 6; }},
    {"trigger groups: 1 or 2", [](Options& o) { o.trigger_groups = 3; }},
    {kReference, [](Options& o) { o.min_reference_frequency = 3e8; }},
    {kReference, [](Options& o) { o.min_reference_frequency = -0.1; }},
    {kReference, [](Options& o) { o.max_reference_frequency = 4294967296; }},
    {"dwell and time resolution: at most 1 s", [](Options& o) { o.dwell_resolution = 1'000'000'001; }},
    {"dwell and time resolution: at most 1 s", [](Options& o) { o.time_resolution = 1'000'000'001; }},
    {"point time: 0 to 1 h", [](Options& o) { o.min_point_time = nanoseconds(-1); }},
    {"point time: 0 to 1 h", [](Options& o) { o.min_point_time = hours(1) + nanoseconds(1); }},
    {"response delay: 0 to 1 h", [](Options& o) { o.response_delay = std::chrono::milliseconds(-1); }},
    {"response delay: 0 to 1 h", [](Options& o) { o.response_delay = std::chrono::milliseconds(3'600'001); }},
    {"serial number and type: at most 100 characters", [](Options& o) { o.serial_number.assign(101, '7'); }},
    {"serial number and type: at most 100 characters", [](Options& o) { o.type.assign(101, '7'); }},
    {"noise: 0 to 100 dB", [](Options& o) { o.noise = -1.0; }},
    {"noise: 0 to 100 dB", [](Options& o) { o.noise = 100.5; }},
    {"device centre: 1 Hz to 1 THz", [](Options& o) { o.device.centre = std::nan(""); }},
    {"device centre: 1 Hz to 1 THz", [](Options& o) { o.device.centre = 1e12 + 1; }},
    {"device width: 1 Hz to 1 THz", [](Options& o) { o.device.width = 0.9; }},
    {"device order: 1 to 20", [](Options& o) { o.device.order = 0; }},
    {"device order: 1 to 20", [](Options& o) { o.device.order = 21; }},
    {kDecibels, [](Options& o) { o.device.loss = -0.1; }},
    {kDecibels, [](Options& o) { o.device.isolation = 300.5; }},
    {kDecibels, [](Options& o) { o.device.return_loss = 300.5; }},
};
// clang-format on

TEST(Options, ThoseThatDescribeNoInstrumentAreRefused) {
  for (const Refused& row : kRefused) {
    Options options;
    row.spoil(options);
    try {
      Validate(options);
      ADD_FAILURE() << row.told << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), row.told);
    }
  }
}

TEST(Options, LimitsAreTaken) {
  Options low;
  low.min_frequency = low.max_frequency = low.device.centre = low.device.width = 1.0;
  low.min_level = low.max_level = -127.0;
  low.level_resolution = low.min_reference_frequency = low.max_reference_frequency = 0.0;
  low.device.order = 1;
  low.device.loss = low.device.isolation = low.device.return_loss = 0.0;
  low.power_variant = 0;
  low.attenuator_mode = 2;
  EXPECT_NO_THROW(Validate(low));
  Options high;
  high.min_frequency = high.max_frequency = high.device.centre = high.device.width = 1e12;
  high.min_level = high.max_level = high.level_resolution = 127.0;
  high.min_reference_frequency = high.max_reference_frequency = 4294967295;
  high.dwell_resolution = high.time_resolution = 1'000'000'000;
  high.min_point_time = high.response_delay = hours(1);
  high.device.order = 20;
  high.device.loss = high.device.isolation = high.device.return_loss = 300.0;
  high.noise = 100.0;
  high.attenuator_mode = 5;
  high.serial_number.assign(100, '7');
  EXPECT_NO_THROW(Validate(high));
}

}  // namespace
}  // namespace simulator
