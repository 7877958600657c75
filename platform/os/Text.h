// Text in the two forms that the driver uses: wide (UTF-16, the COM side) and narrow (the inside,
// in a single-byte ANSI code page or UTF-8).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace os {

#ifdef _WIN32
using WideChar = wchar_t;
#else
using WideChar = char16_t;
#endif
using WideString = std::basic_string<WideChar>;
using WideView = std::basic_string_view<WideChar>;

/// A Windows code page number: 1251, 1252 and 65001 (UTF-8) are known on every system.
using CodePage = std::uint32_t;
inline constexpr CodePage kCyrillicCodePage = 1251;
inline constexpr CodePage kWesternCodePage = 1252;
inline constexpr CodePage kUtf8CodePage = 65001;

/// The calling thread's ANSI code page. Elsewhere than on Windows: the environment variable
/// ZENTREL_ANSI_CODE_PAGE (1252, 1251 or 65001), read once; 1252 when it is unset or unknown.
CodePage ThreadAnsiCodePage();

/// Wide to narrow. A character that the code page does not have becomes '?', an unpaired surrogate
/// too.
std::string ToNarrow(WideView text, CodePage code_page);
/// As above in the thread's ANSI code page.
std::string ToNarrow(WideView text);

/// Narrow to wide. Bytes that are not text in the code page become U+FFFD (UTF-8) or the C1 control
/// character of the same number (single-byte code pages), so that no byte is lost silently.
WideString ToWide(std::string_view text, CodePage code_page);
/// As above in the thread's ANSI code page.
WideString ToWide(std::string_view text);

}  // namespace os
