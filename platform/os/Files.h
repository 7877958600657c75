// Files, folders and their paths. A path is a std::filesystem::path, which can hold any name that
// the system has: wide text on Windows, bytes elsewhere. It may use backslashes, which become
// separators on every system where a file is opened.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/Text.h"

namespace os {

/// The path that a name stands for when it is read as text of one code page. A name with a
/// character that the page lacks is no file's name there: it gives the empty path, which nothing
/// opens, and never a name with question marks or similar letters in place of its own. The page
/// goes with each name, so that threads with different pages do not meet.
std::filesystem::path PathOf(WideView name, CodePage code_page);

/// A path as text; bytes that are not UTF-8 become U+FFFD.
WideString WideOf(const std::filesystem::path& path);

/// The path with backslashes as separators of this system.
std::filesystem::path NativePath(const std::filesystem::path& path);

/// The bytes of a regular file; nothing when it cannot be opened, and at once for what is no
/// regular file: a folder, a FIFO, a pipe, a device. Empty for a file that has more bytes than
/// `largest` or cannot be read.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::size_t largest);

/// Creates or truncates a file for writing in binary mode; other processes may read it meanwhile.
std::ofstream OpenForWriting(const std::filesystem::path& path);

/// Opens a file that exists, or a new one, for writing at its end in binary mode, also behind what
/// others have added meanwhile.
std::ofstream OpenForAppending(const std::filesystem::path& path);

/// Where common files lie, without a trailing separator, the folder that prevails first. Windows
/// has one such folder, empty when it does not tell. Elsewhere: ZENTREL_COMMON_FILES alone, or the
/// user's XDG data home and then the system's XDG data folders.
std::vector<std::filesystem::path> CommonFilesFolders();

/// The user's documents folder, likewise. Elsewhere than on Windows: ZENTREL_DOCUMENTS, or XDG's.
std::filesystem::path DocumentsFolder();

/// Where programs keep the settings that people write, the folder that prevails first: the user's,
/// then the machine's. Windows: the roaming application data and the program data. Elsewhere: XDG's
/// user configuration and its folders for all users.
std::vector<std::filesystem::path> SettingsFolders();

/// The path in an environment variable, empty when there is none.
std::filesystem::path PathFromEnvironment(const char* name);

}  // namespace os
