#include "K4NHardWare/DriverLog.h"

#include <array>
#include <ctime>
#include <filesystem>

#include "platform/os/Files.h"
#include "platform/os/Locale.h"
#include "platform/os/Notice.h"
#include "platform/os/Sync.h"

namespace {

std::string Now(const char* format) {
  const std::tm local = os::LocalTime(std::time(nullptr));
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), format, &local);
  return text.data();
}

std::string TimeOfDay() { return Now("%H:%M:%S"); }
std::string Date() { return Now("%m/%d/%y"); }

}  // namespace

DriverLog::DriverLog(const std::string& file_name) {
  std::filesystem::path path = os::DocumentsFolder();
  path += "\\zentrel lumigraf\\";
  path += os::ToWide(file_name, os::kCyrillicCodePage);
  last_tick_ = os::TickCount();
  // Truncated, then appended to: whoever opens the same log beside this one parts no line.
  if (os::OpenForWriting(path).is_open()) file_ = os::OpenForAppending(path);
  // Kept: a process that opens a log goes on in English.
  os::SetProcessLocale("English");
  if (!file_.is_open()) {
    os::ShowWarning("Error creating logfile!", "ZeVISA Error");
    return;
  }
  Write("\r\n\r\n------------------- Log started " + Date() + " [" + TimeOfDay() + "]" +
        " ----------------------------");
}

DriverLog::~DriverLog() {
  if (!file_.is_open()) return;
  Write("\r\n---------------------------- Log closed ----------------------------");
}

void DriverLog::TimedLine(const char* message) {
  if (message == nullptr) return;
  last_tick_ = os::TickCount();
  Write("\r\n[" + TimeOfDay() + " -  ms after] " + message);
}

void DriverLog::DatedLine(const char* message) {
  if (message == nullptr) return;
  Write("\r\n" + Date() + " [" + TimeOfDay() + "] " + message);
}

void DriverLog::Write(const std::string& entry) { file_ << entry << std::flush; }
