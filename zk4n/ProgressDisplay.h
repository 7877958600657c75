// How far a measurement is: a bar on a terminal, a line every quarter elsewhere; on standard error.
#pragma once

#include <string>

namespace zk4n {

class ProgressDisplay {
 public:
  /// `quiet`: shows nothing.
  ProgressDisplay(std::string what, bool quiet);
  /// Ends the bar's line.
  ~ProgressDisplay();
  ProgressDisplay(const ProgressDisplay&) = delete;
  ProgressDisplay& operator=(const ProgressDisplay&) = delete;

  /// Share of the work that is done, 0 to 1.
  void Show(double share);

 private:
  std::string what_;
  bool quiet_;
  bool terminal_;
  int shown_ = -1;  ///< percent on a terminal, quarters elsewhere
};

}  // namespace zk4n
