// A long run in small: sweeps, settings in the middle of sweeps, faults of the instrument and of
// the link, new sessions. Every trace that the driver hands out is compared with what the
// instrument measured, point for point; the device changes before each sweep, so that a block which
// is lost, handed out twice or mixed with another one cannot pass. The environment's
// ZK_SOAK_SECONDS says how long, ZK_SOAK_SEED which run (1).
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <stop_token>

#include "simulator/FaultText.h"
#include "tests/driver/ProcessResources.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

using std::chrono::steady_clock;

long Setting(const char* name, long otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtol(text, nullptr, 10);
}

/// One sweep as it is asked for. Either axis is stepped, the other one stands at its start.
struct Plan {
  bool is_power = false;
  int points = 0;
  double frequency = 0.0;  // Hz
  double level = 0.0;      // dBm
  double step = 0.0;       // Hz or dB
};

/// A fault that strikes once, and that costs the client no more than time-outs. Those that change a
/// body strike data blocks only: an answer to a setting is believed, whatever it says.
struct Mishap {
  const char* fault;
  bool is_felt = true;  // by the client, as a failure
};
constexpr Mishap kMishaps[] = {
    {"refuse:status=0xFEBF"},
    {"drop"},
    {"header:word=0x1234"},
    {"pieces:bytes=7,pause=1", false},
    {"silence"},
    {"delay:pause=20", false},
    {"block-status:status=0x8007"},
    {"body:bytes=-5,command=6"},
    {"body:bytes=7,command=6"},
    {"length:bytes=-5,command=6"},
};

simulator::Options SmallLog() {
  simulator::Options options;
  options.min_point_time = std::chrono::microseconds(10);
  options.log_capacity = 16;
  options.device.isolation = 40.0;  // the detectors see all of it
  return options;
}

class Soak : public SessionTest {
 protected:
  Soak() : SessionTest(SmallLog()) {}

  int Pick(int first, int last) { return std::uniform_int_distribution(first, last)(random_); }
  bool OneIn(int n) { return Pick(1, n) == 1; }

  Plan NewPlan() {
    Plan plan;
    plan.is_power = OneIn(4);
    plan.points = Pick(2, plan.is_power ? 21 : 801);
    plan.frequency = Pick(500, 3000) * 1e6;
    plan.step = plan.is_power ? 0.5 : Pick(1, 20) * 1e5;
    plan.level = Pick(-20, plan.is_power ? -10 : 0) * 0.5;
    return plan;
  }

  void Connect() {
    ASSERT_TRUE(WaitUntil([this] { return Initialize() == S_OK; }));
    TakeErrorInfo();
    LoadDetectors();
  }
  void Reconnect() {
    surface_.root->Close();
    Connect();
    ++reconnections_;
  }

  /// True when the instrument has taken the whole plan.
  bool Configure(const Plan& plan) {
    Surface& s = surface_;
    device_.centre = Pick(1000, 4000) * 1e6;
    instrument_.SetDevice(device_);
    TakeErrors();
    const double last = (plan.points - 1) * plan.step;
    bool done = s.rf->put_OutputEnabled(VARIANT_TRUE) == S_OK;
    if (plan.is_power) {
      done = s.rf->put_Frequency(plan.frequency) == S_OK && done;
      s.power_step->ConfigureStartStop(plan.level, plan.level + last, plan.step);
    } else {
      done = s.rf->put_Level(plan.level) == S_OK && done;
      s.frequency_step->ConfigureStartStop(plan.frequency, plan.frequency + last,
                                           ZentrelK4NFrequencyStepScalingLinear, plan.step);
    }
    const auto mode =
        plan.is_power ? ZentrelK4NSweepModePowerStep : ZentrelK4NSweepModeFrequencyStep;
    const auto source =
        OneIn(2) ? ZentrelK4NSweepTriggerSourceSoftware : ZentrelK4NSweepTriggerSourceImmediate;
    done = s.sweep->Configure(mode, source) == S_OK && done;
    return TakeErrors().empty() && done;
  }

  /// Whether a fault that is felt has struck since the round began.
  [[nodiscard]] bool HasStruck() const {
    return cut_ || (felt_ && instrument_.StruckRequests() != struck_before_);
  }

  /// True when the sweep has ended well. A free-running one may give its block up to a fault and
  /// deliver the next one: that is no failure. Only a fault of its own keeps a sweep from its end.
  bool Run(bool had_struck) {
    surface_.acquisition->Initiate();
    auto status = ZentrelK4NAcquisitionStatusInProgress;
    const auto deadline = steady_clock::now() + std::chrono::seconds(5);
    while (status == ZentrelK4NAcquisitionStatusInProgress && steady_clock::now() < deadline) {
      surface_.acquisition->get_Status(&status);
    }
    TakeErrorInfo();
    if (status == ZentrelK4NAcquisitionStatusInProgress) {
      EXPECT_TRUE(!had_struck && HasStruck()) << "sweep " << sweeps_ << " was lost";
    }
    return status == ZentrelK4NAcquisitionStatusComplete;
  }

  void Check(const Plan& plan) {
    for (const auto* name : kChannelNames) {
      const Trace trace = Fetch(name);
      ASSERT_EQ(trace.values.size(), static_cast<std::size_t>(plan.points)) << name;
      ASSERT_EQ(trace.initial_x, plan.is_power ? plan.level : plan.frequency);
      ASSERT_NEAR(trace.x_increment, plan.step, 1e-9);
      SCOPED_TRACE("sweep " + std::to_string(sweeps_));
      ExpectResponse(name, trace, [&plan](double x) {
        return plan.is_power ? Output{plan.frequency, x} : Output{x, plan.level};
      });
      points_ += trace.values.size();
    }
    ++sweeps_;
  }

  /// One sweep, sometimes after another one that is given up half-way.
  bool Measure() {
    if (OneIn(3)) {
      Configure(NewPlan());
      surface_.acquisition->Initiate();
    }
    const Plan plan = NewPlan();
    const bool had_struck = HasStruck();
    if (!Configure(plan) || !Run(had_struck)) return false;
    Check(plan);
    return true;
  }

  void Disturb() {
    ++faults_;
    if (OneIn(6)) {
      instrument_.Stop();
      instrument_.Start();
      cut_ = true;
      return;
    }
    const Mishap& mishap = kMishaps[Pick(0, std::size(kMishaps) - 1)];
    simulator::Fault fault = simulator::ParseFault(mishap.fault);
    fault.after = static_cast<std::uint32_t>(Pick(0, 12));
    fault.times = 1;
    if (OneIn(2)) fault.command = kDataCommand;
    felt_ = mishap.is_felt;
    instrument_.InjectFault(fault);
  }

  void Round() {
    // A fault may strike a free-running sweep after its trace was fetched: the next one feels it.
    instrument_.ClearFaults();
    const bool had_struck = HasStruck();
    struck_before_ = instrument_.StruckRequests();
    felt_ = cut_ = false;
    if (OneIn(2)) Disturb();
    if (Measure()) return;
    EXPECT_TRUE(had_struck || HasStruck()) << "a sweep failed that nothing had disturbed";
    instrument_.ClearFaults();
    ++failures_;
    if (Measure()) return;
    EXPECT_TRUE(WaitUntil([this] { return instrument_.ConnectionCount() == 0; }))
        << "a session that fails again has lost its link";
    Reconnect();
    EXPECT_TRUE(Measure()) << "a new session measures";
  }

  std::mt19937 random_{static_cast<unsigned>(Setting("ZK_SOAK_SEED", 1))};
  // The round's fault.
  bool felt_ = false, cut_ = false;
  std::uint64_t struck_before_ = 0;
  std::size_t sweeps_ = 0, points_ = 0, faults_ = 0, failures_ = 0, reconnections_ = 0;
};

/// What a panel on the side shows: it asks for the state all the while.
void Watch(const std::stop_token& stop, Surface& s) {
  while (!stop.stop_requested()) {
    VARIANT_BOOL flag = 0;
    double level = 0.0;
    s.system->get_RFButton(&flag);
    s.system->get_PLLState(&flag);
    s.rf->get_Level(&level);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

TEST_F(Soak, MeasuresOnThroughAllFaultsAndLeavesNothingBehind) {
  const auto seconds = std::chrono::seconds(Setting("ZK_SOAK_SECONDS", ZK_SOAK_SECONDS));
  Connect();
  for (int i = 0; i < 20 && !HasFailure(); ++i) Round();
  surface_.root->Close();
  const ProcessResources before = CountResources();

  const auto end = steady_clock::now() + seconds;
  Connect();
  {
    const std::jthread panel([this](const std::stop_token& stop) { Watch(stop, surface_); });
    while (steady_clock::now() < end && !HasFailure()) Round();
  }
  surface_.root->Close();
  EXPECT_TRUE(WaitUntil([this] { return instrument_.ConnectionCount() == 0; }));
  const ProcessResources after = CountResources();

  std::printf(
      "%zu sweeps (%zu points checked), %zu faults, %zu sweeps failed and repeated, "
      "%zu new sessions\n",
      sweeps_, points_, faults_, failures_, reconnections_);
  std::printf("threads %zu -> %zu, handles %zu -> %zu, heap %zu -> %zu, resident %zu -> %zu\n",
              before.threads, after.threads, before.handles, after.handles, before.memory,
              after.memory, before.resident, after.resident);
  EXPECT_EQ(after.threads, before.threads);
  EXPECT_EQ(after.handles, before.handles);
  // What the heap keeps for its threads comes to some hundred kilobytes.
  EXPECT_LT(after.memory, before.memory + std::size_t{1024} * 1024);
}

}  // namespace
}  // namespace driver_test
