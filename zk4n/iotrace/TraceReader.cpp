#include "zk4n/iotrace/TraceReader.h"

#include <charconv>

namespace iotrace {

void TraceReader::Take(std::string_view text) {
  ++line_;
  if (text.ends_with('\r')) text.remove_suffix(1);
  if (text.empty()) return;
  TraceLine call;
  if (const std::string why = ParseTraceLine(text, call); !why.empty()) {
    listener_.OnDamaged(line_, why);
    return;
  }
  ++good_lines_;
  Dispatch(call);
}

void TraceReader::TakeTooLong() {
  ++line_;
  listener_.OnDamaged(line_, "longer than a line of an I/O trace");
}

void TraceReader::Dispatch(const TraceLine& call) {
  const Key key{call.process, call.session.value_or(0)};
  if (call.session && call.call == "viWrite") {
    SessionOf(key).OnWrite(line_, call);
  } else if (call.session && call.call == "viRead") {
    SessionOf(key).OnRead(line_, call);
  } else if (call.session && call.call == "viClear") {
    SessionOf(key).OnClear();
    Tell(call);
  } else if (call.session && call.call == "viClose") {
    Close(key);
    Tell(call);
  } else if (call.call == "viOpen") {
    Open(call);
    Tell(call);
  } else if (call.call == "note" || call.Failed()) {
    Tell(call);
  }
}

void TraceReader::Open(const TraceLine& call) {
  const std::string_view opened = call.Value("opened");
  std::uint64_t session = 0;
  const auto [end, error] = std::from_chars(opened.data(), opened.data() + opened.size(), session);
  if (call.Failed() || opened.empty() || error != std::errc{}) return;
  const Key key{call.process, session};
  Close(key);  // its closing is not in the trace
  sessions_.try_emplace(key, call.process, session, true, listener_);
}

void TraceReader::Close(const Key& key) {
  const auto found = sessions_.find(key);
  if (found == sessions_.end()) return;
  found->second.OnClose();
  sessions_.erase(found);
}

SessionReader& TraceReader::SessionOf(const Key& key) {
  return sessions_.try_emplace(key, key.first, key.second, false, listener_).first->second;
}

void TraceReader::Tell(const TraceLine& call) {
  Call told{line_, call, {}};
  if (call.Failed()) told.remarks.push_back({Problem::kCall, call.call + ": " + call.status});
  listener_.On(told);
}

void TraceReader::End() {
  for (auto& [key, session] : sessions_) session.OnEndOfTrace();
}

}  // namespace iotrace
