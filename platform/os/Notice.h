// The one notice that the driver shows a person: a warning box.
#pragma once

#include <functional>
#include <string>

namespace os {

/// Shows a system-modal warning with an OK button. Elsewhere than on Windows it goes to the notice
/// hook, or to standard error when none is set.
void ShowWarning(const std::string& text, const std::string& caption);

/// Receives the warnings instead of the screen (every system); an empty function restores the
/// default.
using NoticeHook = std::function<void(const std::string& text, const std::string& caption)>;
void SetNoticeHook(NoticeHook hook);

}  // namespace os
