// One open instrument.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "visa/Attributes.h"
#include "visa/ResourceLock.h"
#include "visa/ResourceName.h"
#include "visa/Settings.h"
#include "visa/Socket.h"
#include "visa/Trace.h"
#include "visa/Visa.h"

namespace zevisa {

/// Every operation may be called from any thread. One read and one write may go on together, a
/// second of either waits its turn; the attributes wait for nobody.
class Session {
 public:
  static constexpr int kNoTerminator = -1;

  /// Settings and trace hold as long as the session.
  Session(ViSession id, ViSession manager, FoundSettings settings, Trace trace);
  ~Session() { Close(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Connects, and takes a lock of the given type first unless it is 0, within so many
  /// milliseconds; the look-up of a host name takes the time that the system's resolver takes.
  /// VI_SUCCESS; VI_ERROR_RSRC_NFOUND, _RSRC_LOCKED or _TMO.
  ViStatus Open(const ResourceName& name, ViAccessMode lock, std::uint32_t timeout);

  /// Ends the waits of other threads with an error and gives the locks back. The connection closes
  /// when the last operation under way has returned.
  void Close();

  /// Fills the buffer. VI_SUCCESS_MAX_CNT when it is full, VI_SUCCESS_TERM_CHAR when the terminator
  /// came, also as the last byte; VI_SUCCESS at once for an empty buffer, and at a pause when ends
  /// are not suppressed. Errors: _TMO, _CONN_LOST, _ABORT, _RSRC_LOCKED, _IO. The count is right in
  /// every case.
  ViStatus Read(std::span<ViByte> buffer, ViUInt32& returned);
  /// Sends everything. VI_SUCCESS or an error as above, the count is what the system took.
  ViStatus Write(std::span<const ViByte> bytes, ViUInt32& returned);

  /// Holds the bytes back until the write buffer is full, or sends them at once in the mode
  /// VI_FLUSH_ON_ACCESS; the count is what was taken. What a failed attempt left goes with the
  /// next.
  ViStatus WriteBuffered(std::span<const ViByte> bytes, ViUInt32& returned);
  /// Sends or drops what is held back, drops what has arrived. VI_ERROR_INV_MASK for two actions on
  /// one buffer.
  ViStatus Flush(ViUInt16 mask);
  /// Flushes, then sets the size in bytes; VI_WARN_NSUP_BUF when the system's own are among them.
  ViStatus SetBuffers(ViUInt16 mask, ViUInt32 size);

  /// Read and Write for files of any length; the time-out counts anew for each 64 KiB. What came
  /// before an error is in the file. VI_ERROR_FILE_ACCESS, _FILE_IO.
  ViStatus ReadToFile(const char* file_name, ViUInt32 count, ViUInt32& returned);
  /// At most so many bytes; VI_SUCCESS when the file has fewer.
  ViStatus WriteFromFile(const char* file_name, ViUInt32 count, ViUInt32& returned);

  /// Drops what has arrived until the instrument is briefly quiet (one that never is does not hold
  /// it up) and what is held back. Sends nothing, but "*CLS" in the protocol VI_PROT_4882_STRS.
  ViStatus Clear();
  /// Asks with "*STB?", triggers with "*TRG"; VI_ERROR_NSUP_OPER in the normal protocol, whose
  /// instruments have no text. VI_ERROR_INP_PROT_VIOL when the answer is no status byte.
  ViStatus ReadStatusByte(ViUInt16& status_byte);
  ViStatus Trigger();
  /// Ends the read and the write that other threads wait in, with VI_ERROR_ABORT.
  void Terminate();

  ViStatus GetAttribute(ViAttr attribute, void* value);
  ViStatus SetAttribute(ViAttr attribute, ViAttrState value);

  /// Waits so many milliseconds for the lock. The key is taken and given for shared locks.
  ViStatus Lock(ViAccessMode type, std::uint32_t timeout, std::string& key);
  ViStatus Unlock();

  [[nodiscard]] ViSession manager() const { return manager_; }
  [[nodiscard]] const Trace& trace() const { return trace_; }

 private:
  /// Runs a transfer when no other of its direction is under way and the locks let it.
  template <typename Body>
  ViStatus InTurn(std::mutex& direction, const Body& body) {
    if (!lock_->Admits(id_)) return VI_ERROR_RSRC_LOCKED;
    const std::lock_guard guard(direction);
    return closed_ ? VI_ERROR_ABORT : body();
  }

  // --- In turn only: reading
  ViStatus Fill(std::span<ViByte> buffer, int terminator, ViUInt32& returned);
  ViStatus Drop(std::uint32_t quiet_time, std::uint32_t cap_time);

  // --- In turn only: writing
  ViStatus Push(std::span<const ViByte> bytes, ViUInt32& returned);
  ViStatus SendUnsent();

  [[nodiscard]] int Terminator() const;
  [[nodiscard]] bool Speaks4882() const;
  ViStatus Tell(std::string_view command);
  ViStatus WaitForLock(ViAccessMode type, Deadline& deadline, std::string& key);
  void Describe(const ResourceName& name, const Address& address);
  void Configure();
  Transfer ReceiveChunk(std::span<ViByte> room, int terminator, Deadline& deadline);
  std::size_t TakeKept(std::span<ViByte> room, int terminator);

  const ViSession id_;
  const ViSession manager_;
  const FoundSettings settings_;
  const Trace trace_;
  Attributes attributes_{Owner::kSession};
  Socket socket_;
  std::shared_ptr<ResourceLock> lock_;  ///< set before other threads see the session
  std::atomic<bool> closed_ = false;
  std::mutex lock_mutex_;  ///< an acquisition and the close do not cross

  std::mutex read_mutex_;
  std::vector<ViByte> kept_;  ///< arrived behind a terminator: the next read begins here
  std::size_t kept_from_ = 0;

  std::mutex write_mutex_;
  std::vector<ViByte> unsent_;  ///< buffered
};

}  // namespace zevisa
