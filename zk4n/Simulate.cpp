// zk4n simulate: an instrument on a TCP port until Ctrl-C.

#include <CLI/App.hpp>
#include <chrono>
#include <cstdio>
#include <memory>
#include <system_error>

#include "platform/os/Sync.h"
#include "simulator/Simulator.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/InstrumentOptions.h"
#include "zk4n/Interrupt.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kInterruptPoll{20};

struct SimulateOptions {
  simulator::Options instrument;
  std::string trigger_period;
  bool log = false;
};

/// Zero for a connector to which nothing is connected.
Clock::duration TriggerPeriodOf(const SimulateOptions& options) {
  if (options.trigger_period.empty()) return Clock::duration::zero();
  const double seconds =
      QuantityArgument("--trigger-period", options.trigger_period, Unit::kSecond);
  if (!(seconds >= 1e-3 && seconds <= 3600.0)) throw UsageError("--trigger-period: 1 ms to 1 h");
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

void ShowRequest(const simulator::RequestRecord& record) {
  std::printf("%u: %s\n", record.connection, record.text.c_str());
  std::fflush(stdout);
}

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
  if (options.log) {
    instrument.Observe([](const simulator::RequestRecord& record,
                          const simulator::InstrumentState& /*state*/) { ShowRequest(record); });
  }
  try {
    instrument.Start();
  } catch (const std::system_error& error) {
    throw UsageError("cannot listen on " + options.instrument.address + " port " +
                     std::to_string(options.instrument.port) + ": " + error.what());
  }
  std::printf("%s\n", instrument.ResourceName().c_str());
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
  AddInstrumentOptions(*command, options->instrument);
  command->callback([options, &status] { status = Simulate(*options); });
}
