// The system's socket interface, as far as its names are the same everywhere.
#pragma once

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace zevisa {

inline bool StartSockets() { return true; }

}  // namespace zevisa
