#include "platform/os/Text.h"

#include <windows.h>

#include "platform/os/System.h"

namespace os {

CodePage ThreadAnsiCodePage() {
  DWORD code_page = 0;
  const int length = sizeof(code_page) / sizeof(wchar_t);
  const int written =
      GetLocaleInfoW(GetThreadLocale(), LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                     reinterpret_cast<wchar_t*>(&code_page), length);
  // A locale that has only Unicode tells 0.
  return written == 0 || code_page == 0 ? GetACP() : code_page;
}

std::string system::ToNarrow(WideView text, CodePage code_page) {
  const int length = static_cast<int>(text.size());
  const auto convert = [&](char* out, int size) {
    return WideCharToMultiByte(code_page, WC_NO_BEST_FIT_CHARS, text.data(), length, out, size,
                               nullptr, nullptr);
  };
  std::string narrow(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  convert(narrow.data(), static_cast<int>(narrow.size()));
  return narrow;
}

WideString system::ToWide(std::string_view text, CodePage code_page) {
  const int length = static_cast<int>(text.size());
  const auto convert = [&](wchar_t* out, int size) {
    return MultiByteToWideChar(code_page, 0, text.data(), length, out, size);
  };
  WideString wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
  convert(wide.data(), static_cast<int>(wide.size()));
  return wide;
}

}  // namespace os
