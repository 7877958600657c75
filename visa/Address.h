// Network addresses of a host's port.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zevisa {

/// An IPv4 or IPv6 address with its port, ready for the system.
struct Address {
  alignas(8) std::array<std::byte, 128> bytes{};  ///< the system's sockaddr_storage
  std::size_t length = 0;
  int family = 0;
  std::string text;  ///< the numeric address, one for every spelling of it
};

/// The addresses of a host, in the order to try them; none when it is unknown. The host is a
/// numeric address, which asks nobody, or a name, which waits for the system's resolver.
std::vector<Address> Resolve(const std::string& host, std::uint16_t port);

}  // namespace zevisa
