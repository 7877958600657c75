// Folders and narrow file names. A narrow file name is text in the code page of the locale in
// effect (LocaleSwitch) and may use backslashes; it becomes a native path only here, where a file
// is opened.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/os/Text.h"

namespace os {

/// The code page in which narrow file names are read now: the thread's ANSI code page, or the one
/// of the innermost LocaleSwitch.
CodePage FileNameCodePage();

/// Switches the process locale (all categories) for its life time and restores the previous one, or
/// leaves the process in another one: "Russian" makes file names Windows-1251, "English"
/// Windows-1252. The switch is process-wide; it does not touch how the driver parses or prints
/// numbers.
class LocaleSwitch {
 public:
  explicit LocaleSwitch(const char* locale_name, const char* afterwards = nullptr);
  ~LocaleSwitch();
  LocaleSwitch(const LocaleSwitch&) = delete;
  LocaleSwitch& operator=(const LocaleSwitch&) = delete;

 private:
  std::string locale_afterwards_;
  CodePage previous_code_page_;
};

/// A narrow file name as a native path; backslashes become separators on every system.
std::filesystem::path NativePath(std::string_view narrow_name);

/// Opens a file for reading in binary mode. A folder, a missing or an unreadable file gives a
/// stream that is not open.
std::ifstream OpenForReading(std::string_view narrow_name);

/// Creates or truncates a file for writing in binary mode; other processes may read it meanwhile.
std::ofstream OpenForWriting(std::string_view narrow_name);

/// The system's common files folder without a trailing separator, as narrow text in the ANSI code
/// page; empty when the system does not tell. Elsewhere than on Windows: ZENTREL_COMMON_FILES, or a
/// folder below the user's XDG data home.
std::string CommonFilesFolder();

/// The user's documents folder, likewise. Elsewhere than on Windows: ZENTREL_DOCUMENTS, or XDG's.
std::string DocumentsFolder();

}  // namespace os
