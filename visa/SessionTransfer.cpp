// The session's reads and writes.
#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "visa/Session.h"

namespace zevisa {
namespace {

// A block on its way stops within some round trips; every setting made during a sweep waits for the
// quiet, so it is short, and an instrument that keeps streaming is given up after the cap.
constexpr std::uint32_t kClearQuiet = 10;  // ms, both
constexpr std::uint32_t kClearCap = 250;

/// How many of the bytes go up to the terminator, which is one of them; all without one.
std::size_t LengthToTerminator(std::span<const ViByte> bytes, int terminator) {
  if (terminator == Session::kNoTerminator) return bytes.size();
  const auto found = std::ranges::find(bytes, static_cast<ViByte>(terminator));
  return static_cast<std::size_t>(found - bytes.begin()) + (found == bytes.end() ? 0 : 1);
}

std::span<const ViByte> Bytes(std::string_view text) {
  return {reinterpret_cast<const ViByte*>(text.data()), text.size()};
}

}  // namespace

ViStatus Session::Read(std::span<ViByte> buffer, ViUInt32& returned) {
  returned = 0;
  if (buffer.empty()) return VI_SUCCESS;
  return InTurn(read_mutex_, [&] { return Fill(buffer, Terminator(), returned); });
}

int Session::Terminator() const {
  return attributes_.Number(Slot::kTermCharEnabled) != 0
             ? static_cast<int>(attributes_.Number(Slot::kTermChar))
             : kNoTerminator;
}

ViStatus Session::Fill(std::span<ViByte> buffer, int terminator, ViUInt32& returned) {
  returned = 0;
  const bool ends_at_pause = attributes_.Number(Slot::kSuppressEnd) == 0;
  const auto timeout = static_cast<std::uint32_t>(attributes_.Number(Slot::kTimeout));
  Deadline deadline(std::min(timeout, settings_.values.read_ceiling));
  Deadline at_once(VI_TMO_IMMEDIATE);
  while (returned < buffer.size()) {
    const bool is_pause_an_end = ends_at_pause && returned > 0;
    const Transfer transfer =
        ReceiveChunk(buffer.subspan(returned), terminator, is_pause_an_end ? at_once : deadline);
    if (is_pause_an_end && transfer.status == VI_ERROR_TMO) return VI_SUCCESS;
    if (transfer.status != VI_SUCCESS) return transfer.status;
    returned += static_cast<ViUInt32>(transfer.count);
    if (buffer[returned - 1] == terminator) return VI_SUCCESS_TERM_CHAR;
  }
  return VI_SUCCESS_MAX_CNT;
}

// Up to the terminator at most; what arrived behind it is kept.
Transfer Session::ReceiveChunk(std::span<ViByte> room, int terminator, Deadline& deadline) {
  if (!kept_.empty()) return {VI_SUCCESS, TakeKept(room, terminator)};
  Transfer transfer = socket_.Receive(room, deadline);
  if (transfer.status != VI_SUCCESS || terminator == kNoTerminator) return transfer;
  const std::span<const ViByte> arrived = room.first(transfer.count);
  transfer.count = LengthToTerminator(arrived, terminator);
  const auto behind = arrived.subspan(transfer.count);
  kept_.assign(behind.begin(), behind.end());
  return transfer;
}

std::size_t Session::TakeKept(std::span<ViByte> room, int terminator) {
  const std::span<const ViByte> kept = std::span(kept_).subspan(kept_from_);
  const std::size_t count =
      LengthToTerminator(kept.first(std::min(kept.size(), room.size())), terminator);
  std::ranges::copy(kept.first(count), room.begin());
  kept_from_ += count;
  if (kept_from_ == kept_.size()) {
    kept_.clear();
    kept_from_ = 0;
  }
  return count;
}

ViStatus Session::Write(std::span<const ViByte> bytes, ViUInt32& returned) {
  returned = 0;
  if (bytes.empty()) return VI_SUCCESS;
  return InTurn(write_mutex_, [&] { return Push(bytes, returned); });
}

ViStatus Session::Push(std::span<const ViByte> bytes, ViUInt32& returned) {
  returned = 0;
  Deadline deadline(static_cast<std::uint32_t>(attributes_.Number(Slot::kTimeout)));
  while (returned < bytes.size()) {
    const Transfer transfer = socket_.Send(bytes.subspan(returned), deadline);
    returned += static_cast<ViUInt32>(transfer.count);
    if (transfer.status != VI_SUCCESS) return transfer.status;
  }
  return VI_SUCCESS;
}

ViStatus Session::Clear() {
  ViStatus status = InTurn(read_mutex_, [&] { return Drop(kClearQuiet, kClearCap); });
  if (status != VI_SUCCESS) return status;
  status = InTurn(write_mutex_, [&] {
    unsent_.clear();
    return VI_SUCCESS;
  });
  return status == VI_SUCCESS && Speaks4882() ? Tell("*CLS\n") : status;
}

ViStatus Session::Drop(std::uint32_t quiet_time, std::uint32_t cap_time) {
  kept_.clear();
  kept_from_ = 0;
  std::array<ViByte, 16384> dropped;
  Deadline cap(cap_time);
  do {
    Deadline quiet(quiet_time);
    const Transfer transfer = socket_.Receive(dropped, quiet);
    if (transfer.status == VI_ERROR_TMO) break;
    if (transfer.status != VI_SUCCESS) return transfer.status;
  } while (!cap.IsOver());
  return VI_SUCCESS;
}

bool Session::Speaks4882() const {
  return attributes_.Number(Slot::kIoProtocol) == VI_PROT_4882_STRS;
}

ViStatus Session::Tell(std::string_view command) {
  ViUInt32 sent = 0;
  return Write(Bytes(command), sent);
}

ViStatus Session::Trigger() { return Speaks4882() ? Tell("*TRG\n") : VI_ERROR_NSUP_OPER; }

ViStatus Session::ReadStatusByte(ViUInt16& status_byte) {
  status_byte = 0;
  if (!Speaks4882()) return VI_ERROR_NSUP_OPER;
  return InTurn(read_mutex_, [&]() -> ViStatus {
    ViStatus status = Tell("*STB?\n");
    if (status < 0) return status;
    std::array<ViByte, 17> answer{};  // the last byte stays 0
    ViUInt32 size = 0;
    status = Fill(std::span(answer).first<16>(), '\n', size);
    if (status < 0) return status;
    const auto* const begin = reinterpret_cast<const char*>(answer.data());
    std::uint8_t number = 0;
    const auto [stop, error] = std::from_chars(begin, begin + size, number);
    const bool is_whole = *stop == '\n' || *stop == '\r';
    if (error != std::errc{} || !is_whole) return VI_ERROR_INP_PROT_VIOL;
    status_byte = number;
    return VI_SUCCESS;
  });
}

void Session::Terminate() { socket_.Abort(); }

}  // namespace zevisa
