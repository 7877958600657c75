#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "simulator/DeviceUnderTest.h"
#include "simulator/Options.h"

namespace simulator {
namespace {

TEST(DeviceUnderTest, BandPassHasItsLossItsEdgesAndItsIsolation) {
  const DeviceUnderTest device{.centre = 2.4e9, .width = 4e8, .loss = 1.5, .isolation = 50.0};
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
  const DeviceUnderTest flat{.kind = DeviceKind::kFlat};
  const DeviceUnderTest open{.kind = DeviceKind::kOpen};
  for (const double frequency : {1e7, 2.4e9, 2e10}) {
    EXPECT_EQ(flat.Through(frequency), -1.5);
    EXPECT_EQ(flat.Reflected(frequency), -30.0);
    EXPECT_EQ(open.Through(frequency), -50.0);
    EXPECT_EQ(open.Reflected(frequency), 0.0);
  }
}

auto& Member(Options& options, auto Options::*member) { return options.*member; }
auto& Member(Options& options, auto DeviceUnderTest::*member) { return options.device.*member; }
/// Sets an option, or one of its device, from a number: a text's length, a time's nanoseconds.
template <auto kMember>
void Set(Options& options, double value) {
  auto& member = Member(options, kMember);
  using Type = std::remove_cvref_t<decltype(member)>;
  if constexpr (std::is_same_v<Type, std::string>) {
    member.assign(static_cast<std::size_t>(value), '7');
  } else if constexpr (std::is_arithmetic_v<Type>) {
    member = static_cast<Type>(value);
  } else {
    member = std::chrono::duration_cast<Type>(std::chrono::duration<double, std::nano>(value));
  }
}

constexpr double kHour = 3.6e12;  // ns
constexpr const char* kFrequency = "frequency limits: 1 Hz to 1 THz, the lower not above the upper";
constexpr const char* kLevelLimits = "level limits: -127 to 127 dBm, the lower not above the upper";
constexpr const char* kReference = "reference limits: 0 to 4.29 GHz, the lower not above the upper";
constexpr const char* kResolution = "dwell and time resolution: at most 1 s";
constexpr const char* kTexts = "serial number and type: at most 100 characters";
constexpr const char* kDecibels = "device loss, isolation and return loss: 0 to 300 dB";

/// The least and the largest value, and those beyond them, which are refused; an unsigned number
/// has none below 0.
struct Range {
  const char* told;
  void (*set)(Options&, double);
  double below, least, largest, above;
};
const Range kRanges[] = {
    {kFrequency, Set<&Options::min_frequency>, 0.9, 1.0, 2e10, 3e10},
    {kFrequency, Set<&Options::max_frequency>, 9e6, 1e7, 1e12, 1.1e12},
    {kLevelLimits, Set<&Options::min_level>, -127.5, -127, 20, 20.5},
    {kLevelLimits, Set<&Options::max_level>, -70.5, -70, 127, 127.5},
    {"level resolution: 0 to 127 dB", Set<&Options::level_resolution>, -0.1, 0, 127, 127.5},
    {"initial level: a number", Set<&Options::initial_level>, -HUGE_VAL, -1e308, 1e308, HUGE_VAL},
    {"power variant: 0 to 5", Set<&Options::power_variant>, -1, 0, 5, 6},
    {"attenuator mode: 0, or 2 to 5", Set<&Options::attenuator_mode>, 1, 2, 5, 6},
    {"trigger groups: 1 or 2", Set<&Options::trigger_groups>, 0, 1, 2, 3},
    {kReference, Set<&Options::min_reference_frequency>, -0.1, 0, 250e6, 3e8},
    {kReference, Set<&Options::max_reference_frequency>, 9e5, 1e6, 4294967295, 4294967296},
    {kResolution, Set<&Options::dwell_resolution>, 0, 0, 1e9, 1e9 + 1},
    {kResolution, Set<&Options::time_resolution>, 0, 0, 1e9, 1e9 + 1},
    {"point time: 0 to 1 h", Set<&Options::min_point_time>, -1, 0, kHour, kHour + 1},
    {"response delay: 0 to 1 h", Set<&Options::response_delay>, -1e6, 0, kHour, kHour + 1e6},
    {kTexts, Set<&Options::serial_number>, 0, 0, 100, 101},
    {kTexts, Set<&Options::type>, 0, 0, 100, 101},
    {"noise: 0 to 100 dB", Set<&Options::noise>, -1, 0, 100, 100.5},
    {"device centre: 1 Hz to 1 THz", Set<&DeviceUnderTest::centre>, 0.9, 1, 1e12, 1e12 + 1},
    {"device width: 1 Hz to 1 THz", Set<&DeviceUnderTest::width>, 0.9, 1, 1e12, 1e12 + 1},
    {"device order: 1 to 20", Set<&DeviceUnderTest::order>, 0, 1, 20, 21},
    {kDecibels, Set<&DeviceUnderTest::loss>, -0.1, 0, 300, 300.5},
    {kDecibels, Set<&DeviceUnderTest::isolation>, -0.1, 0, 300, 300.5},
    {kDecibels, Set<&DeviceUnderTest::return_loss>, -0.1, 0, 300, 300.5},
};

std::string Refused(const Options& options) {
  try {
    Validate(options);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "taken";
}

TEST(Options, ThoseThatDescribeNoInstrumentAreRefused) {
  for (const Range& row : kRanges) {
    for (const double value : {row.below, row.least, row.largest, row.above}) {
      Options options;
      row.set(options, value);
      const bool is_good = value == row.least || value == row.largest;
      EXPECT_EQ(Refused(options), is_good ? "taken" : row.told) << value;
    }
  }
  EXPECT_EQ(Refused({.attenuator_mode = 0}), "taken") << "none";
  EXPECT_EQ(Refused({.initial_level = std::nan("")}), "initial level: a number");
  EXPECT_EQ(Refused({.device = {.centre = std::nan("")}}), "device centre: 1 Hz to 1 THz");
  EXPECT_EQ(Refused({.address = "localhost"}),
            "address: an IP address in numbers, such as 127.0.0.1 or ::1");
}

}  // namespace
}  // namespace simulator
