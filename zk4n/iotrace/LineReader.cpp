#include "zk4n/iotrace/LineReader.h"

#include <algorithm>

namespace iotrace {
namespace {

/// Two digits a byte, and what else a line holds.
constexpr std::size_t kLongestLine = 2 * kMostBytes + 65536;

}  // namespace

void LineReader::Feed(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    const std::string_view piece = bytes.substr(0, end);
    if (line_.size() + piece.size() > kLongestLine) {
      too_long_ = true;
      line_.clear();
    } else if (!too_long_) {
      line_ += piece;
    }
    if (end == std::string_view::npos) return;
    TakeLine();
    bytes.remove_prefix(end + 1);
  }
}

void LineReader::EndFile() {
  if (!line_.empty() || too_long_) TakeLine();
}

void LineReader::TakeLine() {
  if (too_long_) {
    trace_.TakeTooLong();
  } else {
    trace_.Take(line_);
  }
  line_.clear();
  too_long_ = false;
}

}  // namespace iotrace
