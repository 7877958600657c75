#include "platform/os/Locale.h"

namespace os {

void SetProcessLocale(const char*) {}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  tzset();  // the environment may name another zone by now
  localtime_r(&time, &local);
  return local;
}

}  // namespace os
