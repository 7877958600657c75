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

TEST(Options, ThoseThatDescribeNoInstrumentAreRefused) {
  struct Case {
    const char* name;
    void (*spoil)(Options&);
  };
  const Case cases[] = {
      {"limits crossed", [](Options& o) { o.min_frequency = 3e10; }},
      {"frequency zero", [](Options& o) { o.min_frequency = 0.0; }},
      {"levels crossed", [](Options& o) { o.max_level = -80.0; }},
      {"not a number", [](Options& o) { o.device.centre = std::nan(""); }},
      {"power variant", [](Options& o) { o.power_variant = 6; }},
      {"attenuator mode", [](Options& o) { o.attenuator_mode = 1; }},
      {"trigger groups", [](Options& o) { o.trigger_groups = 3; }},
      {"order", [](Options& o) { o.device.order = 0; }},
      {"noise", [](Options& o) { o.noise = -1.0; }},
      {"response delay", [](Options& o) { o.response_delay = std::chrono::milliseconds(-1); }},
      {"serial number too long", [](Options& o) { o.serial_number.assign(101, '7'); }},
  };
  EXPECT_NO_THROW(Validate(Options{}));
  for (const Case& row : cases) {
    Options options;
    row.spoil(options);
    EXPECT_THROW(Validate(options), std::invalid_argument) << row.name;
  }
}

}  // namespace
}  // namespace simulator
