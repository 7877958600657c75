#include <windows.h>

#include "platform/os/Text.h"

namespace os {

CodePage ThreadAnsiCodePage() {
  // CP_THREAD_ACP names the thread's page without telling its number, which file names need.
  CodePage code_page = 0;
  const int size =
      GetLocaleInfoW(GetThreadLocale(), LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                     reinterpret_cast<LPWSTR>(&code_page), sizeof(code_page) / sizeof(wchar_t));
  return size > 0 && code_page != 0 ? code_page : GetACP();
}

std::string ToNarrow(WideView text, CodePage code_page) {
  if (text.empty()) return {};
  const auto length = static_cast<int>(text.size());
  const bool utf8 = code_page == kUtf8CodePage;
  // No best fit: a character that the code page lacks is '?', not a look-alike.
  const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
  const char* const substitute = utf8 ? nullptr : "?";
  const int size =
      WideCharToMultiByte(code_page, flags, text.data(), length, nullptr, 0, substitute, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(code_page, flags, text.data(), length, narrow.data(), size, substitute,
                      nullptr);
  return narrow;
}

WideString ToWide(std::string_view text, CodePage code_page) {
  if (text.empty()) return {};
  const auto length = static_cast<int>(text.size());
  const int size = MultiByteToWideChar(code_page, 0, text.data(), length, nullptr, 0);
  WideString wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(code_page, 0, text.data(), length, wide.data(), size);
  return wide;
}

}  // namespace os
