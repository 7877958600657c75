// Lines of a file that may still grow.
#pragma once

#include <string>
#include <string_view>

#include "zk4n/iotrace/TraceReader.h"

namespace iotrace {

/// Puts lines together from pieces of any size. A line that is longer than any of a trace is told
/// as such, and not kept.
class LineReader {
 public:
  explicit LineReader(TraceReader& trace) : trace_(trace) {}

  void Feed(std::string_view bytes);
  /// The file ends here: a last line without an end is taken as it is.
  void EndFile();

 private:
  void TakeLine();

  TraceReader& trace_;
  std::string line_;
  bool too_long_ = false;
};

}  // namespace iotrace
