#include "visa/Session.h"

#include <algorithm>
#include <array>
#include <thread>

namespace zevisa {
namespace {

constexpr int kNoTerminator = -1;

// How often a lock that somebody holds is tried again.
constexpr std::chrono::milliseconds kLockPause{2};

// A block on its way stops within some round trips; every setting made during a sweep waits for the
// quiet, so it is short, and an instrument that keeps streaming is given up after the cap.
constexpr std::uint32_t kClearQuiet = 10;  // ms, both
constexpr std::uint32_t kClearCap = 250;

/// How many of the bytes go up to the terminator, which is one of them; all without one.
std::size_t LengthToTerminator(std::span<const ViByte> bytes, int terminator) {
  if (terminator == kNoTerminator) return bytes.size();
  const auto found = std::ranges::find(bytes, static_cast<ViByte>(terminator));
  return static_cast<std::size_t>(found - bytes.begin()) + (found == bytes.end() ? 0 : 1);
}

}  // namespace

Session::Session(ViSession id, ViSession manager) : id_(id), manager_(manager) {}

ViStatus Session::Open(const ResourceName& name, ViAccessMode mode, std::uint32_t timeout) {
  Deadline deadline(timeout);
  deadline.Remaining();  // the clock starts before the look-up
  const std::vector<Address> addresses = Resolve(name.host, name.port);
  ViStatus status = VI_ERROR_RSRC_NFOUND;
  std::size_t attempts = addresses.size();
  for (const Address& address : addresses) {
    lock_ = ResourceLock::Of(address.text + ":" + std::to_string(name.port));
    if ((mode & VI_EXCLUSIVE_LOCK) != 0) {
      // Before the connection: an instrument may know one client only.
      std::string no_key;
      const ViStatus locked = WaitForLock(VI_EXCLUSIVE_LOCK, deadline, no_key);
      if (locked < 0) return locked;
    }
    status = socket_.Connect(address, deadline.Share(attempts--));
    if (status == VI_SUCCESS) {
      Describe(name, address);
      return VI_SUCCESS;
    }
    lock_->ReleaseAll(id_);
  }
  return status;
}

void Session::Describe(const ResourceName& name, const Address& address) {
  attributes_.SetNumber(Slot::kPort, name.port);
  attributes_.SetNumber(Slot::kInterfaceNumber, name.board);
  attributes_.SetNumber(Slot::kManager, manager_);
  attributes_.SetText(Slot::kAddress, address.text);
  attributes_.SetText(Slot::kHostName, name.host);
  attributes_.SetText(Slot::kName, name.Canonical());
  attributes_.SetText(Slot::kClass, "SOCKET");
  attributes_.SetText(Slot::kInterfaceName, "TCPIP" + std::to_string(name.board));
}

void Session::Close() {
  {
    const std::lock_guard guard(lock_mutex_);
    closed_ = true;
    if (lock_) lock_->ReleaseAll(id_);
  }
  socket_.Close();
}

ViStatus Session::Read(std::span<ViByte> buffer, ViUInt32& returned) {
  returned = 0;
  if (buffer.empty()) return VI_SUCCESS;
  if (!lock_->Admits(id_)) return VI_ERROR_RSRC_LOCKED;
  const std::lock_guard guard(read_mutex_);
  if (closed_) return VI_ERROR_ABORT;
  const int terminator = attributes_.Number(Slot::kTermCharEnabled) != 0
                             ? static_cast<int>(attributes_.Number(Slot::kTermChar))
                             : kNoTerminator;
  const bool ends_at_pause = attributes_.Number(Slot::kSuppressEnd) == 0;
  Deadline deadline(static_cast<std::uint32_t>(attributes_.Number(Slot::kTimeout)));
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
  if (!lock_->Admits(id_)) return VI_ERROR_RSRC_LOCKED;
  const std::lock_guard guard(write_mutex_);
  if (closed_) return VI_ERROR_ABORT;
  Deadline deadline(static_cast<std::uint32_t>(attributes_.Number(Slot::kTimeout)));
  while (returned < bytes.size()) {
    const Transfer transfer = socket_.Send(bytes.subspan(returned), deadline);
    if (transfer.status != VI_SUCCESS) return transfer.status;
    returned += static_cast<ViUInt32>(transfer.count);
  }
  return VI_SUCCESS;
}

ViStatus Session::Clear() {
  if (!lock_->Admits(id_)) return VI_ERROR_RSRC_LOCKED;
  const std::lock_guard guard(read_mutex_);
  if (closed_) return VI_ERROR_ABORT;
  kept_.clear();
  kept_from_ = 0;
  std::array<ViByte, 16384> dropped;
  for (Deadline cap(kClearCap); !cap.IsOver();) {
    Deadline quiet(kClearQuiet);
    const Transfer transfer = socket_.Receive(dropped, quiet);
    if (transfer.status == VI_ERROR_TMO) break;
    if (transfer.status != VI_SUCCESS) return transfer.status;
  }
  return VI_SUCCESS;
}

void Session::Terminate() { socket_.Abort(); }

ViStatus Session::GetAttribute(ViAttr attribute, void* value) {
  if (attribute == VI_ATTR_RSRC_LOCK_STATE) {
    attributes_.SetNumber(Slot::kLockState, lock_->State());
  }
  return attributes_.Get(attribute, value);
}

ViStatus Session::SetAttribute(ViAttr attribute, ViAttrState value) {
  const ViStatus status = attributes_.Check(attribute, value);
  if (status != VI_SUCCESS) return status;
  const bool on = value != 0;
  if (attribute == VI_ATTR_TCPIP_NODELAY && !socket_.SetNoDelay(on)) return VI_ERROR_IO;
  if (attribute == VI_ATTR_TCPIP_KEEPALIVE && !socket_.SetKeepAlive(on)) return VI_ERROR_IO;
  return attributes_.Set(attribute, value);
}

ViStatus Session::Lock(ViAccessMode type, std::uint32_t timeout, std::string& key) {
  Deadline deadline(timeout);
  return WaitForLock(type, deadline, key);
}

ViStatus Session::WaitForLock(ViAccessMode type, Deadline& deadline, std::string& key) {
  for (;;) {
    {
      const std::lock_guard guard(lock_mutex_);
      if (closed_) return VI_ERROR_ABORT;
      const ViStatus status =
          type == VI_EXCLUSIVE_LOCK ? lock_->TryExclusive(id_) : lock_->TryShared(id_, key);
      if (status != VI_ERROR_RSRC_LOCKED) return status;
    }
    if (deadline.IsOver()) return VI_ERROR_RSRC_LOCKED;
    std::this_thread::sleep_for(kLockPause);
  }
}

ViStatus Session::Unlock() { return lock_->Unlock(id_); }

}  // namespace zevisa
