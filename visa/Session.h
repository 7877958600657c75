// One open instrument.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "visa/Attributes.h"
#include "visa/ResourceLock.h"
#include "visa/ResourceName.h"
#include "visa/Socket.h"
#include "visa/Visa.h"

namespace zevisa {

/// Every operation may be called from any thread. One read and one write may go on together, a
/// second of either waits its turn; the attributes wait for nobody.
class Session {
 public:
  Session(ViSession id, ViSession manager);
  ~Session() { Close(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Connects, and takes the exclusive lock first when the mode asks for it, within so many
  /// milliseconds; the look-up of a host name takes the time that the system's resolver takes.
  /// VI_SUCCESS; VI_ERROR_RSRC_NFOUND, _RSRC_LOCKED or _TMO.
  ViStatus Open(const ResourceName& name, ViAccessMode mode, std::uint32_t timeout);

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
  /// Drops what has arrived until the instrument is briefly quiet; one that never is does not hold
  /// it up. Sends nothing.
  ViStatus Clear();
  /// Ends the read and the write that other threads wait in, with VI_ERROR_ABORT.
  void Terminate();

  ViStatus GetAttribute(ViAttr attribute, void* value);
  ViStatus SetAttribute(ViAttr attribute, ViAttrState value);

  /// Waits so many milliseconds for the lock. The key is taken and given for shared locks.
  ViStatus Lock(ViAccessMode type, std::uint32_t timeout, std::string& key);
  ViStatus Unlock();

  [[nodiscard]] ViSession manager() const { return manager_; }

 private:
  ViStatus WaitForLock(ViAccessMode type, Deadline& deadline, std::string& key);
  void Describe(const ResourceName& name, const Address& address);
  Transfer ReceiveChunk(std::span<ViByte> room, int terminator, Deadline& deadline);
  std::size_t TakeKept(std::span<ViByte> room, int terminator);

  const ViSession id_;
  const ViSession manager_;
  Attributes attributes_{Owner::kSession};
  Socket socket_;
  std::shared_ptr<ResourceLock> lock_;  // set before other threads see the session
  std::atomic<bool> closed_ = false;
  std::mutex lock_mutex_;  // an acquisition and the close do not cross

  std::mutex read_mutex_;
  std::vector<ViByte> kept_;  // arrived behind a terminator: the next read begins here
  std::size_t kept_from_ = 0;

  std::mutex write_mutex_;
};

}  // namespace zevisa
