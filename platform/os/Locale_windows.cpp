#include <clocale>

#include "platform/os/Locale.h"

namespace os {

void SetProcessLocale(const char* windows_name) { std::setlocale(LC_ALL, windows_name); }

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_s(&local, &time);
  return local;
}

}  // namespace os
