// Names of socket resources: TCPIP[board]::host::port::SOCKET.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "status/Status.h"

namespace k4n {

inline constexpr std::uint32_t kDefaultPort = 8888;

/// What a resource name says; numbers too large for 32 bits become the largest one.
struct ResourceName {
  std::string host;
  std::uint32_t board = 0;
  std::uint32_t port = kDefaultPort;
};

}  // namespace k4n

namespace resource_error {
inline constexpr Status kNotSocket{26208};  ///< the fourth piece is not "SOCKET"
inline constexpr Status kNotTcpip{26209};   ///< the first piece is not "TCPIP" and digits
inline constexpr Status kBadPort{26210};    ///< the third piece is not a number
inline constexpr Status kTooManyPieces{26212};
}  // namespace resource_error

namespace k4n {

/// Splits a resource name into its pieces. Missing pieces take their defaults. Returns 0 and stores
/// the result, or a code of resource_error and stores nothing.
Status ParseResourceName(std::string_view text, ResourceName& name);

/// Splits "host:port" at the first colon; the port is 8888 when there is none.
void SplitHostPort(std::string_view text, std::string& host, std::uint32_t& port);

}  // namespace k4n
