#include "platform/os/System.h"

namespace os {

// File names are UTF-8 whatever the locale is, so that it can stay as it is. Other threads may be
// using it.
std::string system::SetLocale(const char*) { return {}; }

}  // namespace os
