#include "simulator/FaultList.h"

#include <algorithm>

namespace simulator {

namespace {

std::size_t Prolonged(std::size_t length, std::int32_t bytes) {
  const auto wanted = static_cast<std::int64_t>(length) + bytes;
  return static_cast<std::size_t>(
      std::clamp<std::int64_t>(wanted, 0, static_cast<std::int64_t>(kMaxBody)));
}

void PutWord(Bytes& bytes, std::size_t offset, std::size_t word) {
  bytes.at(offset) = static_cast<std::uint8_t>(word);
  bytes.at(offset + 1) = static_cast<std::uint8_t>(word >> 8);
}

}  // namespace

std::optional<Fault> FaultList::Take(std::uint16_t command,
                                     std::optional<std::uint16_t> parameter) {
  std::optional<Fault> struck;
  for (Pending& pending : pending_) {
    const Fault& fault = pending.fault;
    if ((fault.kind == FaultKind::kBlockStatus && command != command::kData) ||
        (fault.command && fault.command != command) ||
        (fault.parameter && fault.parameter != parameter)) {
      continue;
    }
    if (pending.met < fault.after) {
      ++pending.met;
      continue;
    }
    const bool over = fault.times != 0 && pending.struck == fault.times;
    if (!struck && !over) {
      struck = fault;
      ++pending.struck;
      ++struck_;
    }
  }
  return struck;
}

Outgoing ShapeAnswer(Message answer, const std::optional<Fault>& fault) {
  const FaultKind kind = fault ? fault->kind : FaultKind::kRefuse;  // which changes nothing here
  if (kind == FaultKind::kBlockStatus && answer.body.size() >= 2) {
    PutWord(answer.body, answer.body.size() - 2, static_cast<std::uint16_t>(fault->status));
  } else if (kind == FaultKind::kBodyLength) {
    answer.body.resize(Prolonged(answer.body.size(), fault->bytes));
  }

  Outgoing outgoing;
  outgoing.bytes = EncodeAnswer(answer);
  outgoing.first = outgoing.bytes.size();
  if (kind == FaultKind::kHeaderWord) {
    PutWord(outgoing.bytes, 0, fault->word);
  } else if (kind == FaultKind::kAnnouncedLength) {
    PutWord(outgoing.bytes, 6, Prolonged(answer.body.size(), fault->bytes));
  } else if (kind == FaultKind::kDelay) {
    outgoing.delay = fault->pause;
  } else if (kind == FaultKind::kPieces) {
    outgoing.first = kHeaderSize;
    outgoing.piece = static_cast<std::size_t>(std::max(fault->bytes, 1));
    outgoing.pause = fault->pause;
  }
  return outgoing;
}

}  // namespace simulator
