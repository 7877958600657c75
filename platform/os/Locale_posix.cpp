#include "platform/os/Locale.h"

namespace os {

void SetProcessLocale(const char*) {}

}  // namespace os
