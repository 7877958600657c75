// zk4n simulate: an instrument on a TCP port until Ctrl-C.

#include <CLI/App.hpp>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/os/Sync.h"
#include "simulator/Simulator.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/InstrumentOptions.h"
#include "zk4n/Interrupt.h"

namespace zk4n {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kInterruptPoll{20};

struct SimulateOptions {
  simulator::Options instrument;
  std::string trigger_period;
  bool log = false;
  bool show = false;
};

/// Zero for a connector to which nothing is connected.
Clock::duration TriggerPeriodOf(const SimulateOptions& options) {
  if (options.trigger_period.empty()) return Clock::duration::zero();
  const double seconds =
      QuantityArgument("--trigger-period", options.trigger_period, Unit::kSecond);
  if (!(seconds >= 1e-3 && seconds <= 3600.0)) throw UsageError("--trigger-period: 1 ms to 1 h");
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

void PrintLines(const std::vector<simulator::StateLine>& lines) {
  for (const simulator::StateLine& line : lines) {
    std::printf("   %-17s %s\n", line.name.c_str(), line.value.c_str());
  }
  std::fflush(stdout);
}

/// Prints each request, and behind it what it changed at the instrument.
class RequestPrinter {
 public:
  /// Without a state to begin with, requests alone are printed.
  explicit RequestPrinter(std::optional<simulator::InstrumentState> state)
      : state_(std::move(state)) {}

  void operator()(const simulator::RequestRecord& record, const simulator::InstrumentState& state) {
    std::printf("%u: %s\n", record.connection, record.text.c_str());
    if (state_) {
      PrintLines(DescribeChanges(*state_, state));
      state_ = state;
    }
    std::fflush(stdout);
  }

 private:
  std::optional<simulator::InstrumentState> state_;
};

void RunUntilInterrupted(simulator::Simulator& instrument, Clock::duration trigger_period) {
  auto next_trigger = Clock::now() + trigger_period;
  while (!InterruptGuard::Requested()) {
    if (trigger_period == Clock::duration::zero()) {
      os::Sleep(kInterruptPoll);
      continue;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next_trigger - Clock::now());
    os::Sleep(std::clamp(wait, std::chrono::milliseconds(0), kInterruptPoll));
    if (Clock::now() >= next_trigger) {
      instrument.FireTrigger();
      next_trigger += trigger_period;
    }
  }
}

int Simulate(const SimulateOptions& options) {
  RequireInstrument(options.instrument);
  const Clock::duration trigger_period = TriggerPeriodOf(options);
  const InterruptGuard interrupt;
  simulator::Simulator instrument(options.instrument);
  const simulator::InstrumentState state = instrument.State();
  if (options.show) {
    instrument.Observe(RequestPrinter(state));
  } else if (options.log) {
    instrument.Observe(RequestPrinter(std::nullopt));
  }
  try {
    instrument.Start();
  } catch (const std::system_error& error) {
    throw UsageError("cannot listen on " + options.instrument.address + " port " +
                     std::to_string(options.instrument.port) + ": " + error.what());
  }
  std::printf("%s\n", instrument.ResourceName().c_str());
  if (options.show) PrintLines(DescribeState(state));
  std::fflush(stdout);
  RunUntilInterrupted(instrument, trigger_period);
  return exit_status::kOk;
}

}  // namespace

void AddSimulateCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<SimulateOptions>();
  options->instrument.port = 8888;
  CLI::App* command = app.add_subcommand(
      "simulate", "A simulated instrument: prints its resource name, then runs until Ctrl-C");
  command->add_option("--address", options->instrument.address, "Address to listen on")
      ->capture_default_str();
  command->add_option("--port", options->instrument.port, "Port to listen on, 0 for any free one")
      ->capture_default_str();
  command->add_option("--trigger-period", options->trigger_period,
                      "Time between pulses at its trigger connector (default: none come)");
  command->add_flag("--log", options->log, "Print each request and its answer, a line each");
  command->add_flag("--show", options->show,
                    "Print the instrument's state, then each request and what it changes");
  AddInstrumentOptions(*command, options->instrument);
  command->callback([options, &status] { status = Simulate(*options); });
}

}  // namespace zk4n
