#include "zk4n/iotrace/Summary.h"

#include <numeric>

#include "zk4n/iotrace/MessageWords.h"

namespace iotrace {

void Summary::Count(const Exchange& exchange) {
  ++exchanges_;
  if (exchange.request) ++commands_[exchange.request->message.command];
  if (!exchange.open_end.empty()) ++left_open_;
  Count(exchange.remarks);
  if (!exchange.end) return;
  std::optional<Slowest>& slowest = exchange.IsData() ? block_ : setting_;
  const auto time = *exchange.end - exchange.begin;
  if (!slowest || time > slowest->time) {
    slowest = Slowest{time, TitleOf(exchange), exchange.line, exchange.begin};
  }
}

void Summary::Count(const Call& call) {
  if (call.made.call == "viClear") ++clears_;
  Count(call.remarks);
}

void Summary::Count(const std::vector<Remark>& remarks) {
  for (const Remark& remark : remarks) ++problems_.at(static_cast<std::size_t>(remark.problem));
}

std::size_t Summary::Failures() const {
  return std::accumulate(problems_.begin(), problems_.end(), std::size_t{0}) -
         Of(Problem::kPassedOver);
}

}  // namespace iotrace
