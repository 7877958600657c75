#include "K4NHardWare/ResourceName.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace k4n {

namespace {

constexpr std::string_view kDigits = "0123456789";

/// The leading run of decimal digits; 0 without any.
std::uint32_t LeadingNumber(std::string_view text) {
  std::uint64_t number = 0;
  for (const char digit : text.substr(0, text.find_first_not_of(kDigits))) {
    number = number * 10 + static_cast<std::uint64_t>(digit - '0');
    if (number > std::numeric_limits<std::uint32_t>::max()) {
      return std::numeric_limits<std::uint32_t>::max();
    }
  }
  return static_cast<std::uint32_t>(number);
}

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of(kDigits) == std::string_view::npos;
}

Status TakePiece(std::size_t index, std::string_view piece, ResourceName& name) {
  switch (index) {
    case 0: {
      const std::size_t digits = piece.find_first_of(kDigits);
      if (piece.substr(0, digits) != "TCPIP") return resource_error::kNotTcpip;
      if (digits != std::string_view::npos) name.board = LeadingNumber(piece.substr(digits));
      return Status::kOk;
    }
    case 1:
      name.host = piece;
      return Status::kOk;
    case 2:
      if (!IsNumber(piece)) return resource_error::kBadPort;
      name.port = LeadingNumber(piece);
      return Status::kOk;
    case 3:
      return piece == "SOCKET" ? Status::kOk : resource_error::kNotSocket;
    default:
      return resource_error::kTooManyPieces;
  }
}

}  // namespace

Status ParseResourceName(std::string_view text, ResourceName& name) {
  constexpr std::string_view kSeparator = "::";
  ResourceName parsed;
  for (std::size_t index = 0;; ++index) {
    const std::size_t end = text.find(kSeparator);
    if (const Status result = TakePiece(index, text.substr(0, end), parsed);
        result != Status::kOk) {
      return result;
    }
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + kSeparator.size());
  }
  name = std::move(parsed);
  return Status::kOk;
}

void SplitHostPort(std::string_view text, std::string& host, std::uint32_t& port) {
  const std::size_t colon = text.find(':');
  host = text.substr(0, colon);
  port = colon == std::string_view::npos ? kDefaultPort : LeadingNumber(text.substr(colon + 1));
}

}  // namespace k4n
