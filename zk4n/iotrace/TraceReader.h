// A whole trace, line by line: the sessions of all processes that write to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

#include "zk4n/iotrace/SessionReader.h"

namespace iotrace {

class TraceReader {
 public:
  /// The listener must outlive it.
  explicit TraceReader(Listener& listener) : listener_(listener) {}

  /// The next line, without its end.
  void Take(std::string_view text);
  /// A line that was too long to be kept.
  void TakeTooLong();
  /// Lines are counted from 1 again: another file has taken the place of the one that was read.
  void BeginFile() { line_ = 0; }
  /// Tells what is still open.
  void End();

  /// Lines that belong to a trace.
  [[nodiscard]] std::size_t GoodLines() const { return good_lines_; }

 private:
  using Key = std::pair<std::uint64_t, std::uint64_t>;  ///< process, session

  void Dispatch(const TraceLine& call);
  void Open(const TraceLine& call);
  void Close(const Key& key);
  SessionReader& SessionOf(const Key& key);
  void Tell(const TraceLine& call);

  Listener& listener_;
  std::map<Key, SessionReader> sessions_;
  std::size_t line_ = 0;
  std::size_t good_lines_ = 0;
};

}  // namespace iotrace
