#include "bench/driver/Park.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <list>
#include <stdexcept>

#include "simulator/Simulator.h"

namespace bench {
namespace {

using Pipe = std::array<int, 2>;  // end to read, end to write

[[noreturn]] void Simulate(std::size_t instruments, int ports, int alive) {
  std::list<simulator::Simulator> simulators;
  for (std::size_t i = 0; i < instruments; ++i) {
    simulators.emplace_back().Start();
    const std::uint16_t port = simulators.back().Port();
    if (write(ports, &port, sizeof port) != sizeof port) _exit(1);
  }
  char nothing;
  while (read(alive, &nothing, 1) > 0) {
  }
  _exit(0);
}

}  // namespace

Park::Park(std::size_t instruments) {
  Pipe ports;
  Pipe alive;
  if (pipe(ports.data()) != 0 || pipe(alive.data()) != 0) throw std::runtime_error("no pipe");
  process_ = fork();
  if (process_ == 0) {
    close(alive[1]);
    Simulate(instruments, ports[1], alive[0]);
  }
  close(ports[1]);
  close(alive[0]);
  alive_ = alive[1];
  std::uint16_t port = 0;
  while (ports_.size() < instruments && read(ports[0], &port, sizeof port) == sizeof port) {
    ports_.push_back(port);
  }
  close(ports[0]);
  if (ports_.size() < instruments) throw std::runtime_error("no simulated instruments");
}

Park::~Park() {
  close(alive_);
  waitpid(process_, nullptr, 0);
}

}  // namespace bench
