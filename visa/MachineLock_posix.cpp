#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "visa/MachineLock.h"

// An abstract local socket address is a name that the kernel gives to one socket at a time and
// takes back when the socket goes: no file to leave behind, no folder to be allowed to write to, no
// owner.
namespace zevisa {
namespace {

struct LockAddress {
  explicit LockAddress(const std::string& name) {
    const std::string full = "zevisa-lock/" + name;
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

}  // namespace

bool MachineLock::TryAcquire(const std::string& name) {
  const int fd = NewSocket();
  if (fd < 0) return false;
  const LockAddress address(name);
  if (bind(fd, address.Get(), address.length) != 0) {
    close(fd);
    return false;
  }
  Release();
  handle_ = fd;
  return true;
}

void MachineLock::Release() {
  if (handle_ != kNone) close(static_cast<int>(handle_));
  handle_ = kNone;
}

bool MachineLock::IsHeld(const std::string& name) {
  const int fd = NewSocket();
  if (fd < 0) return false;
  const LockAddress address(name);
  const bool is_held = connect(fd, address.Get(), address.length) == 0 || errno != ECONNREFUSED;
  close(fd);
  return is_held;
}

}  // namespace zevisa
