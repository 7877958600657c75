// The session's buffers of formatted output and input. Only output is really held back: nothing is
// read before a client wants it.
#include <algorithm>

#include "visa/Session.h"

namespace zevisa {
namespace {

constexpr ViUInt16 kAllFlags = 0xFF;
constexpr std::uint32_t kFlushCap = 250;  // ms, for an instrument that keeps streaming

// The two flags of each buffer exclude each other.
constexpr ViUInt16 kBuffers[] = {
    VI_READ_BUF | VI_READ_BUF_DISCARD, VI_WRITE_BUF | VI_WRITE_BUF_DISCARD,
    VI_IO_IN_BUF | VI_IO_IN_BUF_DISCARD, VI_IO_OUT_BUF | VI_IO_OUT_BUF_DISCARD};

bool IsFlushMask(ViUInt16 mask) {
  return mask != 0 && (mask & ~kAllFlags) == 0 &&
         std::ranges::none_of(kBuffers, [&](ViUInt16 both) { return (mask & both) == both; });
}

}  // namespace

ViStatus Session::WriteBuffered(std::span<const ViByte> bytes, ViUInt32& returned) {
  returned = 0;
  return InTurn(write_mutex_, [&]() -> ViStatus {
    const std::uint64_t capacity = attributes_.Number(Slot::kWriteBufferSize);
    if (unsent_.size() + bytes.size() > capacity) {
      const ViStatus status = SendUnsent();
      if (status != VI_SUCCESS) return status;
      if (bytes.size() >= capacity) return Push(bytes, returned);
    }
    unsent_.insert(unsent_.end(), bytes.begin(), bytes.end());
    returned = static_cast<ViUInt32>(bytes.size());
    const bool goes_now =
        unsent_.size() >= capacity || attributes_.Number(Slot::kWriteMode) == VI_FLUSH_ON_ACCESS;
    return goes_now ? SendUnsent() : VI_SUCCESS;
  });
}

ViStatus Session::SendUnsent() {
  ViUInt32 sent = 0;
  const ViStatus status = Push(unsent_, sent);
  unsent_.erase(unsent_.begin(), unsent_.begin() + sent);
  return status;
}

ViStatus Session::Flush(ViUInt16 mask) {
  if (!IsFlushMask(mask)) return VI_ERROR_INV_MASK;
  if ((mask & (VI_IO_IN_BUF | VI_IO_IN_BUF_DISCARD)) != 0) {
    const ViStatus status = InTurn(read_mutex_, [&] { return Drop(VI_TMO_IMMEDIATE, kFlushCap); });
    if (status != VI_SUCCESS) return status;
  }
  if ((mask & (VI_WRITE_BUF | VI_WRITE_BUF_DISCARD)) == 0) return VI_SUCCESS;
  return InTurn(write_mutex_, [&] {
    if ((mask & VI_WRITE_BUF_DISCARD) != 0) unsent_.clear();
    return SendUnsent();
  });
}

ViStatus Session::SetBuffers(ViUInt16 mask, ViUInt32 size) {
  constexpr ViUInt16 kOfSystem = VI_IO_IN_BUF | VI_IO_OUT_BUF;
  if (mask == 0 || (mask & ~(VI_READ_BUF | VI_WRITE_BUF | kOfSystem)) != 0) {
    return VI_ERROR_INV_MASK;
  }
  if ((mask & VI_WRITE_BUF) != 0) {
    const ViStatus status = Flush(VI_WRITE_BUF);
    if (status != VI_SUCCESS) return status;
    attributes_.SetNumber(Slot::kWriteBufferSize, size);
  }
  if ((mask & VI_READ_BUF) != 0) attributes_.SetNumber(Slot::kReadBufferSize, size);
  // The system sizes the buffers of a connection better than anybody.
  return (mask & kOfSystem) != 0 ? VI_WARN_NSUP_BUF : VI_SUCCESS;
}

}  // namespace zevisa
