#include "zk4n/ProgressDisplay.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "platform/os/Console.h"

namespace zk4n {
namespace {
constexpr int kBarWidth = 40;
}

ProgressDisplay::ProgressDisplay(std::string what, bool quiet)
    : what_(std::move(what)), quiet_(quiet), terminal_(os::IsTerminal(stderr)) {}

ProgressDisplay::~ProgressDisplay() {
  if (!quiet_ && terminal_ && shown_ >= 0) std::fputc('\n', stderr);
}

void ProgressDisplay::Show(double share) {
  if (quiet_ || !std::isfinite(share)) return;
  share = std::clamp(share, 0.0, 1.0);
  const int now = static_cast<int>(share * (terminal_ ? 100.0 : 4.0));
  if (now == shown_) return;
  shown_ = now;
  if (terminal_) {
    const int filled = static_cast<int>(share * kBarWidth);
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                            std::string(static_cast<std::size_t>(kBarWidth - filled), '.');
    std::fprintf(stderr, "\r%s [%s] %3d %%", what_.c_str(), bar.c_str(), now);
  } else {
    std::fprintf(stderr, "%s %d %%\n", what_.c_str(), now * 25);
  }
  std::fflush(stderr);
}

}  // namespace zk4n
