// What many measurements of one quantity come to.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace bench {

class Samples {
 public:
  void Add(double sample) { samples_.push_back(sample); }

  /// The smallest sample that so great a share (0 to 1) of them does not exceed; 0 of none.
  [[nodiscard]] double Quantile(double share) {
    if (samples_.empty()) return 0.0;
    const auto place =
        static_cast<std::ptrdiff_t>(share * static_cast<double>(samples_.size() - 1));
    std::nth_element(samples_.begin(), samples_.begin() + place, samples_.end());
    return samples_[static_cast<std::size_t>(place)];
  }
  [[nodiscard]] double Median() { return Quantile(0.5); }

 private:
  std::vector<double> samples_;
};

}  // namespace bench
