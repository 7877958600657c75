#include <clocale>

#include "platform/os/System.h"

namespace os {

std::string system::SetLocale(const char* name) {
  const char* const current = std::setlocale(LC_ALL, nullptr);
  std::string previous = current == nullptr ? "" : current;
  return std::setlocale(LC_ALL, name) == nullptr ? std::string() : previous;
}

}  // namespace os
