#include <windows.h>

#include "platform/os/System.h"
#include "platform/os/Text.h"

namespace os {

void system::ShowWarning(const std::string& text, const std::string& caption) {
  MessageBoxW(nullptr, os::ToWide(text).c_str(), os::ToWide(caption).c_str(),
              MB_OK | MB_ICONWARNING | MB_SYSTEMMODAL);
}

}  // namespace os
