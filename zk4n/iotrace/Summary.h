// The figures of a whole trace.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

#include "zk4n/iotrace/Exchange.h"

namespace iotrace {

class Summary {
 public:
  struct Slowest {
    std::chrono::microseconds time{0};
    std::string title;
    std::size_t line = 0;
    TimePoint begin;
  };

  void Count(const Exchange& exchange);
  void Count(const Call& call);
  void CountDamaged() { ++damaged_; }

  [[nodiscard]] std::size_t Exchanges() const { return exchanges_; }
  /// By command.
  [[nodiscard]] const std::map<std::uint16_t, std::size_t>& Commands() const { return commands_; }
  [[nodiscard]] std::size_t Of(Problem problem) const {
    return problems_.at(static_cast<std::size_t>(problem));
  }
  /// Of all problems that are failures: answers that were passed over are none.
  [[nodiscard]] std::size_t Failures() const;
  [[nodiscard]] std::size_t Clears() const { return clears_; }
  /// Data requests that were given up, and what the trace's end cuts off.
  [[nodiscard]] std::size_t LeftOpen() const { return left_open_; }
  [[nodiscard]] std::size_t Damaged() const { return damaged_; }
  /// Of a block the time contains the sweep, so that it has a slowest of its own.
  [[nodiscard]] const std::optional<Slowest>& SlowestSetting() const { return setting_; }
  [[nodiscard]] const std::optional<Slowest>& SlowestBlock() const { return block_; }

 private:
  void Count(const std::vector<Remark>& remarks);

  std::size_t exchanges_ = 0;
  std::map<std::uint16_t, std::size_t> commands_;
  std::array<std::size_t, kProblems> problems_{};
  std::size_t clears_ = 0;
  std::size_t left_open_ = 0;
  std::size_t damaged_ = 0;
  std::optional<Slowest> setting_;
  std::optional<Slowest> block_;
};

}  // namespace iotrace
