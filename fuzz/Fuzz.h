// What the fuzz targets share. Each target defines LLVMFuzzerTestOneInput; it runs under libFuzzer,
// or over kept inputs in the plain program of Driver.cpp.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// What must hold whatever the input is.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

/// Takes an input apart from its front; past its end there are zeros.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  std::uint8_t TakeByte() {
    const auto taken = Take(1);
    return taken.empty() ? std::uint8_t{0} : taken.front();
  }
  std::span<const std::uint8_t> Take(std::size_t count) {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  [[nodiscard]] std::span<const std::uint8_t> rest() const { return rest_; }
  [[nodiscard]] std::string_view text() const {
    return {reinterpret_cast<const char*>(rest_.data()), rest_.size()};
  }

 private:
  std::span<const std::uint8_t> rest_;
};

}  // namespace fuzz
