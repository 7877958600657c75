#include <cstdio>

#include "platform/os/System.h"
#include "platform/os/Text.h"

namespace os {

void system::ShowWarning(const std::string& text, const std::string& caption) {
  const auto utf8 = [](const std::string& narrow) {
    return os::ToNarrow(os::ToWide(narrow), kUtf8CodePage);
  };
  std::fprintf(stderr, "%s: %s\n", utf8(caption).c_str(), utf8(text).c_str());
}

}  // namespace os
