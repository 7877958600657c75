#include "platform/os/Text.h"

namespace os {

std::string ToNarrow(WideView text) { return ToNarrow(text, ThreadAnsiCodePage()); }

WideString ToWide(std::string_view text) { return ToWide(text, ThreadAnsiCodePage()); }

}  // namespace os
