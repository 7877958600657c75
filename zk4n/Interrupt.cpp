#include "zk4n/Interrupt.h"

#include <atomic>
#include <csignal>

namespace zk4n {
namespace {

std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

void OnInterrupt(int signal_number) {
  requested.store(true);
  std::signal(signal_number, SIG_DFL);
}

}  // namespace

InterruptGuard::InterruptGuard() : previous_(std::signal(SIGINT, OnInterrupt)) {}

InterruptGuard::~InterruptGuard() {
  if (previous_ != SIG_ERR) std::signal(SIGINT, previous_);
}

bool InterruptGuard::Requested() { return requested.load(); }

}  // namespace zk4n
