// zk4n simulate: an instrument on a TCP port until Ctrl-C.

#include <CLI/App.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "platform/os/Sync.h"
#include "simulator/Simulator.h"
#include "zk4n/Commands.h"
#include "zk4n/Interrupt.h"

namespace {

constexpr std::chrono::milliseconds kInterruptPoll{50};

int Simulate(const simulator::Options& options) {
  const InterruptGuard interrupt;
  try {
    simulator::Simulator instrument(options);
    instrument.Start();
    std::printf("%s\n", instrument.ResourceName().c_str());
    std::fflush(stdout);
    while (!InterruptGuard::Requested()) os::Sleep(kInterruptPoll);
  } catch (const std::invalid_argument& error) {
    throw UsageError(error.what());
  } catch (const std::system_error& error) {
    throw UsageError("cannot listen on " + options.address + " port " +
                     std::to_string(options.port) + ": " + error.what());
  }
  return exit_status::kOk;
}

}  // namespace

void AddSimulateCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<simulator::Options>();
  options->port = 8888;
  CLI::App* command = app.add_subcommand("simulate", "A simulated instrument, until Ctrl-C");
  command->add_option("--address", options->address, "Address to listen on")->capture_default_str();
  command->add_option("--port", options->port, "Port to listen on, 0 for any free one")
      ->capture_default_str();
  command->add_option("--serial", options->serial_number, "Serial number")->capture_default_str();
  command->add_option("--type", options->type, "Type text")->capture_default_str();
  command->add_option("--power-variant", options->power_variant, "Power command generation, 0 to 5")
      ->capture_default_str();
  command->add_option("--noise", options->noise, "Noise at each detector, dB")
      ->capture_default_str();
  command->callback([options, &status] { status = Simulate(*options); });
}
