#include "K4NHardWare/ErrorText.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace k4n {

namespace {

struct CodeText {
  std::int32_t code;
  const char* text;
};

// Mostly socket error numbers. Kept: the first and the last row do not fit into 16 bits, so that a
// client sees them as "Unknown error: 32768(8000)" and "Unknown error: 55(37)".
constexpr std::array<CodeText, 7> kTexts = {{
    {-32768, "Instrument critical error"},
    {10053, "Connection aborted"},
    {10054, "Connection closed"},
    {10038, "Invalid socket handle"},
    {10057, "Instrument not connected"},
    {10065, "Host unreachable"},
    {ToCode(Status::kVisaProtocolViolation), "Protocol violation error"},
}};

}  // namespace

std::string ErrorText(Status code) {
  const std::int32_t reduced = ToCode(code) & 0xFFFF;
  const auto* row = std::find_if(kTexts.begin(), kTexts.end(),
                                 [reduced](const CodeText& item) { return item.code == reduced; });
  if (row != kTexts.end()) return row->text;
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "Unknown error: %d(%X)", reduced,
                static_cast<unsigned>(reduced));
  return text.data();
}

}  // namespace k4n
