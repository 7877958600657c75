// Registration scripts in the registrar's syntax, read into keys and values.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os/Text.h"

/// A script that cannot be read; what() names the line and what is wrong there.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What becomes of a key when the script is run in the removing direction.
enum class KeyRemoval {
  kWhenEmpty,  ///< it goes unless others have put keys below it
  kNever,      ///< NoRemove: it stays, what the script has below it goes
  kForced,  ///< ForceRemove: it goes with all that is below it, also before it is registered anew
};

/// A text; the empty name is the key's default value.
struct ScriptValue {
  os::WideString name;
  os::WideString text;
  bool operator==(const ScriptValue&) const = default;
};

struct ScriptKey {
  os::WideString name;
  KeyRemoval removal = KeyRemoval::kWhenEmpty;
  std::vector<ScriptValue> values;
  std::vector<ScriptKey> keys;
  bool operator==(const ScriptKey&) const = default;
};

/// What stands for %NAME% in the texts and names of a script.
using Replacements = std::map<std::string, os::WideString>;

/// Reads a script (UTF-8). Words are separated by blanks and line breaks:
///
///     root { [NoRemove|ForceRemove] key [= s 'text'] [{ ... }]   val name = s 'text' }
///
/// with HKCR, HKCU or HKLM as the root; there may be several. A name or text in apostrophes may
/// hold blanks, and an apostrophe written twice; %% is a per cent sign. Values are texts: nothing
/// that is registered here is of another type. Returns the root keys. Throws ScriptError.
std::vector<ScriptKey> ParseRegistryScript(std::string_view script,
                                           const Replacements& replacements);
