#include "zk4n/Sweep.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "platform/os/Sync.h"

namespace zk4n {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPollInterval{5};
constexpr std::chrono::seconds kPatience{10};
constexpr VARIANT_BOOL kTrue = -1;
constexpr VARIANT_BOOL kFalse = 0;

Unit StepUnitOf(SweptAxis axis) {
  return axis == SweptAxis::kFrequency ? Unit::kHertz : Unit::kDecibel;
}

/// The instrument's read-back of one sweep.
struct Segment {
  double start = 0.0;
  double stop = 0.0;
  double step = 0.0;
};

/// The interfaces that a measurement uses.
struct Groups {
  ComPtr<IZentrelK4NRF> rf;
  ComPtr<IZentrelK4NSweep> sweep;
  ComPtr<IZentrelK4NFrequencyStep> frequency_step;
  ComPtr<IZentrelK4NPowerStep> power_step;
  ComPtr<IZentrelK4NAcquisition> acquisition;
  ComPtr<IZentrelK4NChannels> channels;

  explicit Groups(const DriverClient& driver) {
    driver.Check(driver->get_RF(rf.Put()), "RF");
    driver.Check(driver->get_Sweep(sweep.Put()), "Sweep");
    driver.Check(sweep->get_FrequencyStep(frequency_step.Put()), "Sweep.FrequencyStep");
    driver.Check(sweep->get_PowerStep(power_step.Put()), "Sweep.PowerStep");
    driver.Check(driver->get_Acquisition(acquisition.Put()), "Acquisition");
    driver.Check(acquisition->get_Channels(channels.Put()), "Acquisition.Channels");
  }
};

/// Switches the output off on every way out of a measurement.
class OutputSwitch {
 public:
  OutputSwitch(const DriverClient& driver, IZentrelK4NRF& rf) : rf_(rf) {
    driver.Check(rf_.put_OutputEnabled(kTrue), "RF.OutputEnabled");
  }
  ~OutputSwitch() { rf_.put_OutputEnabled(kFalse); }
  OutputSwitch(const OutputSwitch&) = delete;
  OutputSwitch& operator=(const OutputSwitch&) = delete;

 private:
  IZentrelK4NRF& rf_;
};

void SetUp(const DriverClient& driver, const Groups& groups, const MeasurementPlan& plan) {
  const bool frequency = plan.axis == SweptAxis::kFrequency;
  driver.Check(groups.rf->put_Level(frequency ? plan.level : plan.start), "RF.Level");
  driver.Check(groups.rf->put_Frequency(frequency ? plan.start : plan.frequency), "RF.Frequency");
  driver.Check(groups.acquisition->put_Averaging(plan.averaging), "Acquisition.Averaging");
  driver.Check(groups.frequency_step->put_Dwell(plan.dwell), "Sweep.FrequencyStep.Dwell");
}

/// Programs one sweep and reads back what the instrument made of it.
Segment Configure(const DriverClient& driver, const Groups& groups, const MeasurementPlan& plan,
                  double start) {
  Segment segment;
  driver.ClearTrail();
  if (plan.axis == SweptAxis::kFrequency) {
    driver.Check(groups.frequency_step->ConfigureStartStop(
                     start, plan.stop, ZentrelK4NFrequencyStepScalingLinear, plan.step),
                 "Sweep.FrequencyStep.ConfigureStartStop");
    driver.Check(groups.frequency_step->get_Start(&segment.start), "Sweep.FrequencyStep.Start");
    driver.Check(groups.frequency_step->get_Stop(&segment.stop), "Sweep.FrequencyStep.Stop");
    driver.Check(groups.frequency_step->get_Size(&segment.step), "Sweep.FrequencyStep.Size");
  } else {
    driver.Check(groups.power_step->ConfigureStartStop(start, plan.stop, plan.step),
                 "Sweep.PowerStep.ConfigureStartStop");
    driver.Check(groups.power_step->get_Start(&segment.start), "Sweep.PowerStep.Start");
    driver.Check(groups.power_step->get_Stop(&segment.stop), "Sweep.PowerStep.Stop");
    driver.Check(groups.power_step->get_Size(&segment.step), "Sweep.PowerStep.Size");
  }
  // A step that the instrument refuses is no failure of the member that sets it.
  driver.CheckTrail(plan.axis == SweptAxis::kFrequency ? "Sweep.FrequencyStep.ConfigureStartStop"
                                                       : "Sweep.PowerStep.ConfigureStartStop");
  const bool clamped = std::abs(segment.start - start) > plan.step / 2;
  if (segment.step == 0.0 && plan.stop - start >= plan.step && !clamped) {
    throw std::runtime_error("the instrument cannot make steps of " +
                             FormatQuantity(plan.step, StepUnitOf(plan.axis)));
  }
  driver.Check(
      groups.sweep->Configure(plan.axis == SweptAxis::kFrequency ? ZentrelK4NSweepModeFrequencyStep
                                                                 : ZentrelK4NSweepModePowerStep,
                              ZentrelK4NSweepTriggerSourceSoftware),
      "Sweep.Configure");
  return segment;
}

/// Starts the sweep and waits for its data, as long as it may take with the dwell and averaging of
/// the plan.
void Acquire(const DriverClient& driver, const Groups& groups, Clock::duration expected,
             const std::function<void(double)>& progress,
             const std::function<bool()>& interrupted) {
  const auto started = Clock::now();
  driver.Check(groups.acquisition->Initiate(), "Acquisition.Initiate");
  driver.CheckTrail("Acquisition.Initiate");
  for (;;) {
    ZentrelK4NAcquisitionStatusEnum state = ZentrelK4NAcquisitionStatusUnknown;
    driver.Check(groups.acquisition->get_Status(&state), "Acquisition.Status");
    if (state == ZentrelK4NAcquisitionStatusComplete) return;
    // What goes wrong while the instrument sweeps is told in the trail alone.
    driver.CheckTrail("measurement");
    if (state == ZentrelK4NAcquisitionStatusUnknown) {
      throw std::runtime_error("measurement: the driver cannot tell its status");
    }
    if (interrupted()) {
      groups.acquisition->Abort();
      throw Interrupted();
    }
    const auto elapsed = Clock::now() - started;
    if (elapsed > expected * 3 + kPatience) {
      throw std::runtime_error("no data from the instrument: gave up waiting for the sweep");
    }
    progress(std::min(1.0, expected.count() == 0 ? 0.0
                                                 : static_cast<double>(elapsed.count()) /
                                                       static_cast<double>(expected.count())));
    os::Sleep(kPollInterval);
  }
}

/// Appends one channel's values and returns how many there were.
std::size_t FetchChannel(const DriverClient& driver, const Groups& groups, std::size_t index,
                         Trace& trace, double& initial_x, double& increment) {
  Bstr name;
  driver.Check(groups.channels->get_Name(static_cast<LONG>(index) + 1, name.Put()),
               "Channels.Name");
  ComPtr<IZentrelK4NChannel> channel;
  driver.Check(groups.channels->get_Item(name.Get(), channel.Put()), "Channels.Item");
  SAFEARRAY* data = nullptr;
  driver.Check(channel->FetchData(&data, &initial_x, &increment), "Channel.FetchData");
  const SafeArrayOwner owner(data);
  const SafeArrayAccess<double> values(data);
  const auto span = values.Values();
  trace.channels[index].insert(trace.channels[index].end(), span.begin(), span.end());
  return span.size();
}

/// Fetches the three channels and returns the points of the segment.
std::size_t Fetch(const DriverClient& driver, const Groups& groups, Trace& trace) {
  double initial_x = 0.0;
  double increment = 0.0;
  std::size_t points = 0;
  for (std::size_t c = 0; c < kChannels; ++c) {
    points = FetchChannel(driver, groups, c, trace, initial_x, increment);
  }
  for (std::size_t i = 0; i < points; ++i) {
    trace.x.push_back(initial_x + increment * static_cast<double>(i));
  }
  return points;
}

}  // namespace

std::size_t PointsOf(const MeasurementPlan& plan) {
  const double intervals = plan.step == 0.0 ? 0.0 : (plan.stop - plan.start) / plan.step;
  return intervals > 0.0 ? static_cast<std::size_t>(std::lround(intervals)) + 1 : 1;
}

Trace RunSweep(const DriverClient& driver, const MeasurementPlan& plan, const Progress& progress,
               const std::function<bool()>& interrupted) {
  const Groups groups(driver);
  Trace trace;
  trace.axis = plan.axis;
  const double total = static_cast<double>(PointsOf(plan));
  SetUp(driver, groups, plan);
  const OutputSwitch output(driver, *groups.rf.Get());

  double start = plan.start;
  for (;;) {
    if (interrupted()) throw Interrupted();
    const Segment segment = Configure(driver, groups, plan, start);
    if (!trace.x.empty() && std::abs(segment.start - start) > plan.step / 2) break;  // its limit
    const double done = static_cast<double>(trace.x.size());
    const double points =
        segment.step == 0.0 ? 1.0 : std::round((segment.stop - segment.start) / segment.step) + 1.0;
    const auto expected = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(points * plan.dwell * std::max<double>(1.0, plan.averaging)));
    Acquire(
        driver, groups, expected, [&](double share) { progress((done + share * points) / total); },
        interrupted);
    const std::size_t fetched = Fetch(driver, groups, trace);
    progress(static_cast<double>(trace.x.size()) / total);

    // Half a step short of the stop: nothing is left to measure.
    const double next = segment.start + segment.step * static_cast<double>(fetched);
    if (fetched == 0 || segment.step <= 0.0 || next > plan.stop + segment.step / 2) break;
    start = next;
  }
  return trace;
}

}  // namespace zk4n
