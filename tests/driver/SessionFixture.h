// A driver with an instrument at the other end of a real connection.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/Simulator.h"
#include "tests/driver/DriverModule.h"
#include "tests/platform/Arrays.h"
#include "tests/platform/WaitUntil.h"

namespace driver_test {

/// An answer that the failure tests look for: a code that no layer gives a meaning.
inline constexpr std::int16_t kRefusal = -321;

// The instrument's commands.
constexpr std::uint16_t kWriteCommand = 3;
constexpr std::uint16_t kReadCommand = 4;
constexpr std::uint16_t kDataCommand = 6;

inline simulator::Fault RefuseCommand(std::uint16_t command, std::int16_t status) {
  return {.kind = simulator::FaultKind::kRefuse, .command = command, .status = status};
}

/// A text or array that a member must neither read nor free: either would trap.
template <typename T>
T* Untouchable() {
  return std::bit_cast<T*>(std::uintptr_t{64});
}

/// A simulated instrument on a port of its own and every interface of a driver for it. No session
/// is open before Open().
class Bench {
 public:
  explicit Bench(const simulator::Options& options = {})
      : device_(options.device), instrument_(options) {
    instrument_.Start();
  }
  ~Bench() { surface_.root->Close(); }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

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
  /// As tests of measurements begin.
  void OpenToMeasure() {
    Open();
    LoadDetectors();
    EXPECT_EQ(surface_.rf->put_Level(kLevel), S_OK);
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
      BSTR text = Untouchable<OLECHAR>();
      EXPECT_EQ(surface_.utility->ErrorQuery(&code, &text), S_OK);
      EXPECT_EQ(text == nullptr, code == 0);
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
  /// Starts a sweep, with the instrument's output on. The end of one with an external trigger does
  /// not depend on the time: it waits for FireTrigger().
  void StartSweep(double start, double stop, double step,
                  ZentrelK4NSweepTriggerSourceEnum trigger = ZentrelK4NSweepTriggerSourceExternal) {
    EXPECT_EQ(surface_.frequency_step->ConfigureStartStop(
                  start, stop, ZentrelK4NFrequencyStepScalingLinear, step),
              S_OK);
    EXPECT_EQ(surface_.sweep->Configure(ZentrelK4NSweepModeFrequencyStep, trigger), S_OK);
    EXPECT_EQ(surface_.rf->put_OutputEnabled(VARIANT_TRUE), S_OK);
    EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
  }
  /// One measurement from its start to its end.
  void Measure() {
    EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
    EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  }
  /// Runs one sweep to its end.
  void RunSweep(double start, double stop, double step) {
    StartSweep(start, stop, step, ZentrelK4NSweepTriggerSourceSoftware);
    EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  }
  struct Trace {
    std::vector<double> values;
    double initial_x = -1.0;
    double x_increment = -1.0;
  };
  Trace Fetch(std::string_view name) {
    Trace trace;
    auto* array = Untouchable<SAFEARRAY>();
    const HRESULT fetched = Channel(name)->FetchData(&array, &trace.initial_x, &trace.x_increment);
    EXPECT_EQ(fetched, S_OK);
    if (fetched != S_OK) return trace;
    const SafeArrayOwner owner(array);
    EXPECT_EQ(array->rgsabound[0].lLbound, 0);
    trace.values = ValuesOf(array);
    return trace;
  }
  struct Output {
    double frequency;  ///< Hz
    double level;      ///< dBm
  };
  /// Every point of a trace against what the simulated device does to the output, which is told for
  /// a place of the axis.
  void ExpectResponse(std::string_view name, const Trace& trace, auto output_at) {
    for (std::size_t i = 0; i < trace.values.size(); ++i) {
      const double x = trace.initial_x + static_cast<double>(i) * trace.x_increment;
      const auto [frequency, level] = output_at(x);
      const double response = name == kChannelNames[0]   ? device_.Through(frequency)
                              : name == kChannelNames[1] ? device_.Reflected(frequency)
                                                         : 0.0;
      ASSERT_NEAR(trace.values[i], level + response, 0.05) << name << " point " << i << " at " << x;
    }
  }
  /// The same of the newest traces of a sweep over frequencies at a level in dBm.
  void ExpectResponse(double level, std::size_t points) {
    for (const auto* name : kChannelNames) {
      const Trace trace = Fetch(name);
      ASSERT_EQ(trace.values.size(), points) << name;
      ExpectResponse(name, trace, [level](double x) { return Output{x, level}; });
    }
  }

  void ExpectMeasures() {
    RunSweep(2e9, 2.8e9, 1e7);
    ExpectResponse(kLevel, 81);
  }

  static constexpr double kLevel = -5.0;
  static constexpr std::array<const char*, 3> kChannelNames{"ChannelA", "ChannelB", "ChannelR"};

  simulator::DeviceUnderTest device_;
  simulator::Simulator instrument_;
  Surface surface_{ModuleWithVisa()};
};

class SessionTest : public testing::Test, protected Bench {
 protected:
  using Bench::Bench;
};

}  // namespace driver_test
