// The bytes of one direction of a session, cut into messages. Parts of them may be unknown: a trace
// keeps the first bytes of a long call only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "simulator/Wire.h"

namespace iotrace {

struct StreamMessage {
  simulator::Message message;  ///< its body as far as it is known from its front
  std::size_t length = 0;      ///< of the whole body

  [[nodiscard]] bool IsCut() const { return message.body.size() < length; }
};

class MessageStream {
 public:
  /// What one call moved, of which the front is known.
  void Feed(std::span<const std::uint8_t> known, std::size_t moved);
  void Clear();

  /// Bytes that wait for the rest of their message.
  [[nodiscard]] std::size_t size() const { return size_; }
  /// Whether they begin like a message does, as far as is known.
  [[nodiscard]] bool HasHeaderWord() const;
  /// The two bytes that should be the header word; only where HasHeaderWord is false.
  [[nodiscard]] std::uint16_t Word() const;
  /// Whether a header cannot be known, so that nothing behind it can be told apart.
  [[nodiscard]] bool HidesHeader() const;
  /// Bytes that the header announces, itself included; none before it has come.
  [[nodiscard]] std::optional<std::size_t> Announced() const;

  /// The next whole message; none while its end has not come, or its header is hidden or wrong.
  std::optional<StreamMessage> Next();

 private:
  struct Run {
    std::vector<std::uint8_t> known;
    std::size_t missing = 0;  ///< behind them
    std::size_t dropped = 0;  ///< of the known ones

    [[nodiscard]] std::span<const std::uint8_t> Known() const {
      return std::span(known).subspan(dropped);
    }
  };
  /// The bytes from the front that are known, at most so many.
  [[nodiscard]] std::vector<std::uint8_t> Front(std::size_t most) const;
  void Drop(std::size_t count);

  std::deque<Run> runs_;
  std::size_t size_ = 0;
};

}  // namespace iotrace
