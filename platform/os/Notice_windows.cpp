#include <windows.h>

#include "platform/os/Notice.h"

namespace os {

void ShowSystemWarning(const std::string& text, const std::string& caption) {
  MessageBoxA(nullptr, text.c_str(), caption.c_str(), MB_SYSTEMMODAL | MB_ICONWARNING | MB_OK);
}

}  // namespace os
