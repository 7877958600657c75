#include "zk4n/Trace.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>

namespace zk4n {

ChannelSummary Summarise(const std::vector<double>& x, const std::vector<double>& values) {
  constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();
  if (values.empty() ||
      std::any_of(values.begin(), values.end(), [](double v) { return v != v; })) {
    return {kNothing, kNothing, kNothing, kNothing, kNothing};
  }
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  const auto at = [&](auto position) {
    return x[static_cast<std::size_t>(position - values.begin())];
  };
  const double sum = std::accumulate(values.begin(), values.end(), 0.0);
  return {*low, *high, sum / static_cast<double>(values.size()), at(low), at(high)};
}

std::vector<double> TransmissionOf(const Trace& trace) {
  std::vector<double> difference(trace.x.size());
  std::transform(trace.channels[0].begin(), trace.channels[0].end(), trace.channels[2].begin(),
                 difference.begin(), std::minus<>());
  return difference;
}

}  // namespace zk4n
