#include "zk4n/iotrace/Exchange.h"

#include <array>

namespace iotrace {

std::string_view NameOf(Problem problem) {
  constexpr std::array<std::string_view, kProblems> kNames{
      "time-out", "connection", "header word", "length",      "number",
      "mismatch", "refused",    "unpaired",    "passed over", "call"};
  return kNames.at(static_cast<std::size_t>(problem));
}

bool Exchange::IsData() const {
  return request && request->message.command == simulator::command::kData;
}

std::optional<Block> BlockOf(const StreamMessage& answer) {
  constexpr std::size_t kPointSize = 12;
  constexpr std::size_t kStatusSize = 2;
  if (answer.length < kStatusSize || (answer.length - kStatusSize) % kPointSize != 0) {
    return std::nullopt;
  }
  Block block{(answer.length - kStatusSize) / kPointSize, std::nullopt};
  if (!answer.IsCut()) {
    block.status = static_cast<std::int16_t>(
        simulator::ReadWord(answer.message.body, answer.length - kStatusSize));
  }
  return block;
}

}  // namespace iotrace
