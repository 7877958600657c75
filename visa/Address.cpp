#include "visa/Address.h"

#include <SystemSockets.h>

#include <cstring>
#include <memory>

namespace zevisa {
namespace {

using Found = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

Found LookUp(const std::string& host, const std::string& port, int flags) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_protocol = IPPROTO_TCP;
  hints.ai_flags = flags | AI_NUMERICSERV;
  addrinfo* list = nullptr;
  if (getaddrinfo(host.c_str(), port.c_str(), &hints, &list) != 0) list = nullptr;
  return {list, &freeaddrinfo};
}

std::string NumericText(const addrinfo& info) {
  std::array<char, NI_MAXHOST> text{};
  if (getnameinfo(info.ai_addr, static_cast<socklen_t>(info.ai_addrlen), text.data(),
                  static_cast<socklen_t>(text.size()), nullptr, 0, NI_NUMERICHOST) != 0) {
    return {};
  }
  // An IPv4 address in the clothes of IPv6 reaches the same instrument.
  const std::string address = text.data();
  constexpr std::string_view kMapped = "::ffff:";
  const bool is_mapped = address.starts_with(kMapped) && address.find('.') != std::string::npos;
  return is_mapped ? address.substr(kMapped.size()) : address;
}

}  // namespace

std::vector<Address> Resolve(const std::string& host, std::uint16_t port) {
  std::vector<Address> addresses;
  if (!StartSockets()) return addresses;
  const std::string service = std::to_string(port);
  Found found = LookUp(host, service, AI_NUMERICHOST);
  if (!found) found = LookUp(host, service, 0);
  for (const addrinfo* info = found.get(); info != nullptr; info = info->ai_next) {
    Address address;
    if (info->ai_addrlen > address.bytes.size()) continue;
    std::memcpy(address.bytes.data(), info->ai_addr, info->ai_addrlen);
    address.length = info->ai_addrlen;
    address.family = info->ai_family;
    address.text = NumericText(*info);
    if (!address.text.empty()) addresses.push_back(std::move(address));
  }
  return addresses;
}

}  // namespace zevisa
