#include <cstdio>

#include "platform/os/Notice.h"

namespace os {

void ShowSystemWarning(const std::string& text, const std::string& caption) {
  std::fprintf(stderr, "%s: %s\n", caption.c_str(), text.c_str());
}

}  // namespace os
