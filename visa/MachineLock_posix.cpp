#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>

#include "platform/os/FileDescriptor_posix.h"
#include "platform/os/Process.h"
#include "visa/MachineLock.h"

// An abstract local socket address is a name that the kernel gives to one socket at a time and
// takes back when the socket goes: no file to leave behind, no folder to be allowed to write to, no
// owner. Everybody may read the list of these names, so a second one is enough to say who holds the
// first.
namespace zevisa {
namespace {

constexpr std::string_view kLock = "zevisa-lock/";
constexpr std::string_view kHolder = "zevisa-holder/";  // the lock's name, "/", the holder follow

struct LockAddress {
  LockAddress(std::string_view kind, const std::string& name) {
    const std::string full = std::string(kind) + name;
    const std::size_t room = std::min(full.size(), sizeof socket.sun_path - 1);
    std::copy_n(full.data(), room, socket.sun_path + 1);
    length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + room);
    socket.sun_family = AF_UNIX;
  }
  [[nodiscard]] const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&socket); }

  sockaddr_un socket{};
  socklen_t length;
};

int NewSocket() { return socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0); }

/// A socket of that name; -1 when there is one already, or no more sockets.
int Bind(const LockAddress& address) {
  os::FileDescriptor fd(NewSocket());
  const bool is_bound = fd.Get() >= 0 && bind(fd.Get(), address.Get(), address.length) == 0;
  return is_bound ? fd.Release() : -1;
}

void Close(std::intptr_t fd) {
  if (fd >= 0) close(static_cast<int>(fd));
}

std::string ThisProcess() {
  const std::string program = os::ProgramName();
  return "process " + std::to_string(os::ProcessNumber()) +
         (program.empty() ? "" : " (" + program + ")");
}

}  // namespace

bool MachineLock::TryAcquire(const std::string& name) {
  const int fd = Bind({kLock, name});
  if (fd < 0) return false;
  Release();
  handle_ = fd;
  note_ = Bind({kHolder, name + "/" + ThisProcess()});
  return true;
}

void MachineLock::Release() {
  Close(note_);
  Close(handle_);
  note_ = handle_ = kNone;
}

bool MachineLock::IsHeld(const std::string& name) {
  const os::FileDescriptor asking(NewSocket());
  if (asking.Get() < 0) return false;
  const LockAddress address(kLock, name);
  return connect(asking.Get(), address.Get(), address.length) == 0 || errno != ECONNREFUSED;
}

std::string MachineLock::Holder(const std::string& name) {
  const std::string prefix = "@" + std::string(kHolder) + name + "/";
  std::ifstream names("/proc/net/unix");
  for (std::string line; std::getline(names, line);) {
    const auto found = line.find(prefix);
    if (found != line.npos) return line.substr(found + prefix.size());
  }
  return {};
}

}  // namespace zevisa
