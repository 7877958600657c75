#include <clocale>

#include "platform/os/Locale.h"

namespace os {

void SetProcessLocale(const char* windows_name) { std::setlocale(LC_ALL, windows_name); }

}  // namespace os
