#include "visa/ResourceName.h"

#include <algorithm>
#include <charconv>

#include "visa/Visa.h"

namespace zevisa {
namespace {

constexpr std::string_view kSeparator = "::";

bool IsHostCharacter(char c) {
  return static_cast<unsigned char>(c) > ' ' && c != '[' && c != ']' && c != '/' && c != '\x7f';
}

// Decimal digits and nothing else.
std::optional<std::uint16_t> ParseNumber(std::string_view text) {
  std::uint16_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

}  // namespace

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, Upper, Upper);
}

std::string ResourceName::Canonical() const {
  return "TCPIP" + std::to_string(board) + "::" + host + "::" + std::to_string(port) + "::SOCKET";
}

std::optional<ResourceName> ParseResourceName(std::string_view text) {
  // The host may contain the separator: it is what the first and the last two pieces leave.
  const auto first = text.find(kSeparator);
  const auto last = text.rfind(kSeparator);
  if (first == text.npos || last <= first) return std::nullopt;
  if (!EqualsIgnoringCase(text.substr(last + 2), "SOCKET")) return std::nullopt;
  const std::string_view interface = text.substr(0, first);
  constexpr std::string_view kInterface = "TCPIP";
  if (!EqualsIgnoringCase(interface.substr(0, kInterface.size()), kInterface)) return std::nullopt;

  if (last < first + 2) return std::nullopt;
  const std::string_view middle = text.substr(first + 2, last - first - 2);
  const auto before_port = middle.rfind(kSeparator);
  if (before_port == middle.npos || before_port == 0) return std::nullopt;
  std::string_view host = middle.substr(0, before_port);
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  }

  const std::string_view digits = interface.substr(kInterface.size());
  const auto board = digits.empty() ? std::uint16_t{0} : ParseNumber(digits);
  const auto port = ParseNumber(middle.substr(before_port + 2));
  if (!board || !port || *port == 0 || !std::ranges::all_of(host, IsHostCharacter)) {
    return std::nullopt;
  }
  ResourceName name{.board = *board, .host = std::string(host), .port = *port};
  if (name.Canonical().size() >= VI_FIND_BUFLEN) return std::nullopt;
  return name;
}

}  // namespace zevisa
