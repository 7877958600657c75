#include "visa/Session.h"

#include <cstring>
#include <thread>
#include <utility>

namespace zevisa {
namespace {

// How often a lock that somebody holds is tried again.
constexpr std::chrono::milliseconds kLockPause{2};

}  // namespace

Session::Session(ViSession id, ViSession manager, FoundSettings settings, Trace trace)
    : id_(id), manager_(manager), settings_(std::move(settings)), trace_(std::move(trace)) {}

ViStatus Session::Open(const ResourceName& name, ViAccessMode lock, std::uint32_t timeout) {
  Deadline deadline(timeout);
  deadline.Remaining();  // the clock starts before the look-up
  const std::vector<Address> addresses = Resolve(name.host, name.port);
  ViStatus status = VI_ERROR_RSRC_NFOUND;
  std::size_t attempts = addresses.size();
  for (const Address& address : addresses) {
    lock_ = ResourceLock::Of(address.text + ":" + std::to_string(name.port));
    if (lock != 0) {
      // Before the connection: an instrument may know one client only.
      std::string no_key;
      const ViStatus locked = WaitForLock(lock, deadline, no_key);
      if (locked < 0) return locked;
    }
    status = socket_.Connect(address,
                             deadline.Share(attempts--).Capped(settings_.values.connect_ceiling));
    if (status == VI_SUCCESS) {
      Describe(name, address);
      Configure();
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

// What the system refuses stays as it is: a session that works comes first.
void Session::Configure() {
  attributes_.SetText(Slot::kSettingsFile, settings_.file);
  attributes_.SetText(Slot::kSettingsSection, settings_.section);
  const Settings& values = settings_.values;
  const bool keeps_alive =
      values.keep_alive && socket_.KeepAlive(values.keep_alive_idle, values.keep_alive_interval,
                                             values.keep_alive_probes);
  if (keeps_alive) attributes_.SetNumber(Slot::kKeepAlive, 1);
  if (!values.no_delay) SetAttribute(VI_ATTR_TCPIP_NODELAY, 0);
}

void Session::Close() {
  {
    const std::lock_guard guard(lock_mutex_);
    closed_ = true;
    if (lock_) lock_->ReleaseAll(id_);
  }
  socket_.Close();
}

ViStatus Session::GetAttribute(ViAttr attribute, void* value) {
  if (attribute == VI_ATTR_RSRC_LOCK_STATE) attributes_.SetNumber(Slot::kLockState, lock_->State());
  if (attribute == VI_ATTR_ZENTREL_LOCK_OWNER && value != nullptr) {
    const std::string owner = lock_->Owner().substr(0, VI_FIND_BUFLEN - 1);
    std::memcpy(value, owner.c_str(), owner.size() + 1);
    return VI_SUCCESS;
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
