// The driver's module as a file, and where it is registered. Paths are UTF-8.
#pragma once

#include <string>

namespace zk4n {

/// The full path of a module that was typed, or of the one beside this program for an empty text.
/// Throws UsageError for a file that cannot be read.
std::string DriverFile(const std::string& typed);

/// The file that the registered driver class is in; empty when it is not registered.
std::string RegisteredDriverFile();

/// 32 or 64; 0 when the file is no module of this processor family or cannot be read.
int BitsOfModule(const std::string& file);

}  // namespace zk4n
