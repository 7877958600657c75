#include "zk4n/iotrace/MessageStream.h"

#include <algorithm>

namespace iotrace {

void MessageStream::Feed(std::span<const std::uint8_t> known, std::size_t moved) {
  known = known.first(std::min(known.size(), moved));
  if (moved == 0) return;
  runs_.push_back({{known.begin(), known.end()}, moved - known.size(), 0});
  size_ += moved;
}

void MessageStream::Clear() {
  runs_.clear();
  size_ = 0;
}

bool MessageStream::HasHeaderWord() const {
  return Front(2).size() < 2 || Word() == simulator::kHeaderWord;
}

std::uint16_t MessageStream::Word() const { return simulator::ReadWord(Front(2), 0); }

bool MessageStream::HidesHeader() const {
  const std::size_t wanted = std::min(size_, simulator::kHeaderSize);
  return Front(wanted).size() < wanted;
}

std::optional<std::size_t> MessageStream::Announced() const {
  const std::vector<std::uint8_t> header = Front(simulator::kHeaderSize);
  if (header.size() < simulator::kHeaderSize || !HasHeaderWord()) return std::nullopt;
  return simulator::kHeaderSize + simulator::BodyLength(header);
}

std::optional<StreamMessage> MessageStream::Next() {
  const std::optional<std::size_t> announced = Announced();
  if (!announced || size_ < *announced) return std::nullopt;
  const std::vector<std::uint8_t> bytes = Front(*announced);
  StreamMessage next{simulator::DecodeHeader(bytes), *announced - simulator::kHeaderSize};
  next.message.body.assign(bytes.begin() + simulator::kHeaderSize, bytes.end());
  Drop(*announced);
  return next;
}

std::vector<std::uint8_t> MessageStream::Front(std::size_t most) const {
  std::vector<std::uint8_t> front;
  for (const Run& run : runs_) {
    const auto known = run.Known().first(std::min(most - front.size(), run.Known().size()));
    front.insert(front.end(), known.begin(), known.end());
    if (front.size() == most || run.missing != 0) break;
  }
  return front;
}

void MessageStream::Drop(std::size_t count) {
  size_ -= count;
  while (count != 0) {
    Run& run = runs_.front();
    const std::size_t known = std::min(count, run.Known().size());
    const std::size_t missing = std::min(count - known, run.missing);
    run.dropped += known;
    run.missing -= missing;
    count -= known + missing;
    if (run.Known().empty() && run.missing == 0) runs_.pop_front();
  }
}

}  // namespace iotrace
