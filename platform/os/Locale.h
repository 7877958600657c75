// The locale of the process, and its local time.
#pragma once

#include <ctime>

namespace os {

/// Sets the locale of the process, all categories. Elsewhere than on Windows nothing: names differ
/// there, and other threads may be using it.
void SetProcessLocale(const char* windows_name);

/// The time in the local zone. Any thread; leaves alone what std::localtime gave others.
std::tm LocalTime(std::time_t time);

}  // namespace os
