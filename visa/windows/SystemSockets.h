// The system's socket interface, as far as its names are the same everywhere.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

namespace zevisa {

/// Starts Winsock for this module, once. It is not stopped again: the one place for that would be
/// the unloading of the module, where Winsock must not be called.
inline bool StartSockets() {
  static const bool started = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data) == 0;
  }();
  return started;
}

}  // namespace zevisa
