// Simulated instruments in a process of their own, so that what is measured here is the driver's.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// Make it while the process has one thread.
class Park {
 public:
  explicit Park(std::size_t instruments);
  /// Ends the process.
  ~Park();
  Park(const Park&) = delete;
  Park& operator=(const Park&) = delete;

  [[nodiscard]] std::size_t size() const { return ports_.size(); }
  [[nodiscard]] std::uint16_t port(std::size_t index) const { return ports_[index]; }

 private:
  std::vector<std::uint16_t> ports_;
  int alive_ = -1;  ///< the process ends when this end of the pipe closes
  pid_t process_ = -1;
};

}  // namespace bench
