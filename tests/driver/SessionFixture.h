// A driver with an instrument at the other end of a real connection.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <initializer_list>
#include <string>
#include <thread>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/Simulator.h"
#include "tests/driver/DriverModule.h"

namespace driver_test {

/// An answer that the failure tests look for: a code that no layer gives a meaning.
inline constexpr std::int16_t kRefusal = -321;

/// An array of doubles as clients pass it.
inline SafeArrayOwner Doubles(std::initializer_list<double> values) {
  SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(values.size())));
  const SafeArrayAccess<double> access(array.Get());
  std::copy(values.begin(), values.end(), access.Values().begin());
  return array;
}
inline std::vector<double> ValuesOf(SAFEARRAY* array) {
  const SafeArrayAccess<double> access(array);
  EXPECT_EQ(access.Result(), S_OK);
  return {access.Values().begin(), access.Values().end()};
}

/// A simulated instrument on a port of its own and every interface of a driver for it. No session
/// is open before Open().
class SessionTest : public testing::Test {
 protected:
  explicit SessionTest(const simulator::Options& options = {}) : instrument_(options) {
    instrument_.Start();
  }
  ~SessionTest() override { surface_.root->Close(); }

  HRESULT Initialize(VARIANT_BOOL id_query = VARIANT_FALSE, VARIANT_BOOL reset = VARIANT_FALSE,
                     std::string_view options = {}) {
    return surface_.root->Initialize(Text(instrument_.ResourceName()).Get(), id_query, reset,
                                     options.empty() ? nullptr : Text(options).Get());
  }
  /// Without the error information that the missing default detector file leaves.
  void Open(std::string_view options = {}) {
    ASSERT_EQ(Initialize(VARIANT_FALSE, VARIANT_FALSE, options), S_OK);
    TakeErrorInfo();
  }
  bool IsOpen() {
    EXPECT_EQ(surface_.root->get_Initialized(&surface_.flag), S_OK);
    return surface_.flag != 0;
  }
  ComPtr<IZentrelK4NChannel> Channel(std::string_view name) {
    ComPtr<IZentrelK4NChannel> channel;
    EXPECT_EQ(surface_.channels->get_Item(Text(name).Get(), channel.Put()), S_OK);
    return channel;
  }
  /// The recorded failures, oldest first, which are thereby taken away.
  std::vector<LONG> TakeErrors() {
    std::vector<LONG> codes;
    for (;;) {
      LONG code = 0;
      BSTR text = nullptr;
      EXPECT_EQ(surface_.utility->ErrorQuery(&code, &text), S_OK);
      SysFreeString(text);
      if (code == 0) return codes;
      codes.push_back(code);
    }
  }

  /// The detector file that belongs to the simulated detectors, in all three channels.
  void LoadDetectors() {
    for (const auto* name : kChannelNames) {
      EXPECT_EQ(Channel(name)->LoadDetectorDataFromFile(Text(ZK_DETECTOR_FILE).Get()), S_OK);
    }
  }
  /// True as soon as the condition holds, false when it does not within a minute.
  template <typename Condition>
  static bool WaitUntil(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
  }
  /// Waits for the end of the measurement: complete, or unknown after a failure.
  ZentrelK4NAcquisitionStatusEnum WaitForEnd() {
    auto status = ZentrelK4NAcquisitionStatusInProgress;
    EXPECT_TRUE(WaitUntil([&] {
      EXPECT_EQ(surface_.acquisition->get_Status(&status), S_OK);
      return status != ZentrelK4NAcquisitionStatusInProgress;
    }));
    TakeErrorInfo();
    return status;
  }
  /// Runs one sweep to its end, with the instrument's output on.
  void RunSweep(double start, double stop, double step) {
    EXPECT_EQ(surface_.frequency_step->ConfigureStartStop(
                  start, stop, ZentrelK4NFrequencyStepScalingLinear, step),
              S_OK);
    EXPECT_EQ(surface_.sweep->Configure(ZentrelK4NSweepModeFrequencyStep,
                                        ZentrelK4NSweepTriggerSourceSoftware),
              S_OK);
    EXPECT_EQ(surface_.rf->put_OutputEnabled(VARIANT_TRUE), S_OK);
    EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
    EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  }
  struct Trace {
    std::vector<double> values;
    double initial_x = -1.0;
    double x_increment = -1.0;
  };
  Trace Fetch(std::string_view name) {
    Trace trace;
    SAFEARRAY* array = nullptr;
    EXPECT_EQ(Channel(name)->FetchData(&array, &trace.initial_x, &trace.x_increment), S_OK);
    const SafeArrayOwner owner(array);
    if (array != nullptr) trace.values = ValuesOf(array);
    return trace;
  }
  /// Every point of the newest trace against what the simulated device does to a level in dBm.
  void ExpectResponse(double level, std::size_t points) {
    const simulator::DeviceUnderTest device;
    for (const auto* name : kChannelNames) {
      const Trace trace = Fetch(name);
      ASSERT_EQ(trace.values.size(), points) << name;
      for (std::size_t i = 0; i < points; ++i) {
        const double frequency = trace.initial_x + static_cast<double>(i) * trace.x_increment;
        const double response = name == kChannelNames[0]   ? device.Through(frequency)
                                : name == kChannelNames[1] ? device.Reflected(frequency)
                                                           : 0.0;
        ASSERT_NEAR(trace.values[i], level + response, 0.05) << name << " at " << frequency;
      }
    }
  }

  static constexpr std::array<const char*, 3> kChannelNames{"ChannelA", "ChannelB", "ChannelR"};

  simulator::Simulator instrument_;
  Surface surface_{ModuleWithVisa()};
};

}  // namespace driver_test
