// Registration scripts in the registrar's syntax, read into keys and values.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os/Text.h"

namespace server {

/// A script that cannot be read; what() names the line and what is wrong there.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What becomes of a key when the script is run in the removing direction.
enum class KeyRemoval {
  kWhenEmpty,  ///< removed unless others have put keys below it
  kNever,      ///< NoRemove: stays; what the script has below it is removed
  kForced,     ///< ForceRemove: removed with everything below it, also before registering
  kBefore,     ///< Delete: removed when registering, and not made again
};

/// Types of values, numbered as in the registry.
enum class ValueType : std::uint32_t { kText = 1, kBinary = 3, kNumber = 4, kTexts = 7 };

/// The empty name is the key's default value.
struct ScriptValue {
  os::WideString name;
  ValueType type = ValueType::kText;
  std::vector<std::uint8_t> data;  ///< as the registry keeps it
};

struct ScriptKey {
  os::WideString name;
  KeyRemoval removal = KeyRemoval::kWhenEmpty;
  std::vector<ScriptValue> values;
  std::vector<ScriptKey> keys;
};

/// What stands for %NAME% in the texts and names of a script.
using Replacements = std::map<std::string, os::WideString>;

/// Reads a script (UTF-8). Words are separated by blanks and line breaks:
///
///     root { [NoRemove|ForceRemove|Delete] key [= value] [{ ... }]   val name = value }
///
/// with HKCR, HKCU or HKLM (or their long names) as the root; there may be several. A name or text
/// in apostrophes may hold blanks, and an apostrophe written twice; %% is a per cent sign. A value
/// is its type and a text in apostrophes: s 'text', d 'number' (32 bits, 0x for hexadecimal),
/// b 'hexadecimal bytes', m 'text\0text'. Returns the root keys, with their short names. Throws
/// ScriptError.
std::vector<ScriptKey> ParseRegistryScript(std::string_view script,
                                           const Replacements& replacements);

}  // namespace server
