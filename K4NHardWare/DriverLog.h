// A plain-text log in the user's documents folder. The driver opens one only for who asks for it:
// see CallLog.h.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

/// One log file; belongs to one thread. Narrow text, every entry starts with CR LF and is flushed
/// at once. Writes to a log that could not be created are lost.
class DriverLog {
 public:
  /// Creates or truncates "zentrel lumigraf\NAME" in the documents folder and writes the opening
  /// banner. The name is text in Windows-1251. The folder is not created; without it a warning box
  /// says that there is no log.
  explicit DriverLog(const std::string& file_name);
  /// Writes the closing banner.
  ~DriverLog();
  DriverLog(const DriverLog&) = delete;
  DriverLog& operator=(const DriverLog&) = delete;

  [[nodiscard]] bool IsOpen() const { return file_.is_open(); }

  /// Adds a line with the time of day. Kept: the milliseconds since the line before are measured,
  /// but their place in the line stays empty. A null message writes nothing, here and below.
  void TimedLine(const char* message);
  /// Adds a line with date and time.
  void DatedLine(const char* message);

 private:
  void Write(const std::string& entry);

  std::uint32_t last_tick_ = 0;  ///< of the last timed line
  std::ofstream file_;
};
