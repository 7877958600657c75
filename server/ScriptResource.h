// The module's registration scripts: resources of type REGISTRY on Windows, embedded elsewhere.
#pragma once

#include <string_view>

namespace server {

/// The script with this number in registration/Registration.rc; empty when there is none.
std::string_view ScriptResource(int number);

}  // namespace server
