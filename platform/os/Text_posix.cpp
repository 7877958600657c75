#include "platform/os/Text.h"

#include <cstdlib>

#include "platform/os/System.h"

namespace os {

namespace {

CodePage CodePageFromEnvironment() {
  const char* const setting = std::getenv("ZENTREL_ANSI_CODE_PAGE");
  if (setting == nullptr) return kWesternCodePage;
  const std::string_view text = setting;
  if (text == "1251") return kCyrillicCodePage;
  if (text == "65001") return kUtf8CodePage;
  return kWesternCodePage;
}

}  // namespace

CodePage ThreadAnsiCodePage() {
  static const CodePage code_page = CodePageFromEnvironment();
  return code_page;
}

// There are no code pages but the common three: any other number is taken for the default one.
std::string system::ToNarrow(WideView text, CodePage) {
  return os::ToNarrow(text, kWesternCodePage);
}

WideString system::ToWide(std::string_view text, CodePage) {
  return os::ToWide(text, kWesternCodePage);
}

}  // namespace os
