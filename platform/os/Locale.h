// The locale of the process.
#pragma once

namespace os {

/// Sets the locale of the process, all categories. Elsewhere than on Windows nothing: names differ
/// there, and other threads may be using it.
void SetProcessLocale(const char* windows_name);

}  // namespace os
