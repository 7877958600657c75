// Names of socket resources: TCPIP[board]::host::port::SOCKET.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zevisa {

/// The capital of an ASCII letter; anything else as it is.
constexpr char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

struct ResourceName {
  std::uint16_t board = 0;
  std::string host;  ///< a name, or a numeric address without brackets
  std::uint16_t port = 0;

  /// The name in full: capitals, the board always told. Fits a client's buffer of 256 bytes.
  [[nodiscard]] std::string Canonical() const;
};

/// Nothing when the text is not the name of a socket resource. Case does not matter; the host may
/// be an IPv6 address, whose own "::" belong to it, also in brackets.
std::optional<ResourceName> ParseResourceName(std::string_view text);

}  // namespace zevisa
