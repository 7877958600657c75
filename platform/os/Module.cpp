#include "platform/os/Module.h"

#include <utility>

namespace os {

Module::~Module() { Unload(); }

Module::Module(Module&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

Module& Module::operator=(Module&& other) noexcept {
  if (this != &other) {
    Unload();
    handle_ = std::exchange(other.handle_, nullptr);
  }
  return *this;
}

}  // namespace os
