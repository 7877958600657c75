// What this folder's files ask the system for; one implementation for each system. Not for use
// outside.
#pragma once

#include <string>
#include <string_view>

#include "platform/os/Text.h"

namespace os::system {

/// Conversions for code pages other than the three that are known everywhere.
std::string ToNarrow(WideView text, CodePage code_page);
WideString ToWide(std::string_view text, CodePage code_page);

/// What a person sees of a warning when no hook is set.
void ShowWarning(const std::string& text, const std::string& caption);

}  // namespace os::system
