// What the commands do alike with what was typed. Texts are UTF-8.
#pragma once

#include <filesystem>
#include <string>

#include "zk4n/Quantity.h"

namespace zk4n {

/// The value of an option; throws UsageError for a text that is none in this unit.
double QuantityArgument(const std::string& option, const std::string& text, Unit unit);

/// A path as it was typed.
std::filesystem::path PathArgument(const std::string& utf8);
/// A path as a person reads it.
std::string Utf8Of(const std::filesystem::path& path);

/// Throws UsageError unless the file can be opened for reading.
void RequireReadable(const std::string& file);

}  // namespace zk4n
