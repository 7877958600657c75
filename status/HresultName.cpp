#include "status/HresultName.h"

#include <array>
#include <cstdio>

namespace {

struct NamedResult {
  std::uint32_t bits;
  std::string_view name;
};

constexpr NamedResult kNames[] = {
#include "status/ResultNames.inc"
};

}  // namespace

std::string_view HresultName(std::int32_t result) {
  const auto bits = static_cast<std::uint32_t>(result);
  for (const NamedResult& named : kNames) {
    if (named.bits == bits) return named.name;
  }
  if (bits >= 1 && bits <= 6) return "instrument notice";
  if (bits >= 0xFFFF8000) return "instrument error code";
  if ((bits & 0xFFFF0000) == 0xBFFF0000) return "VISA error";
  return "unnamed result";
}

std::string HresultText(std::int32_t result) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(result));
  return text.data();
}
