// The language of the console: one line is one command.
#pragma once

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/com/Com.h"

namespace shell {

/// A line that is no command, or a name that the driver does not have. what() is one short line.
class Fault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The beginning of what was typed, in printable characters, for a message.
std::string Excerpt(std::string_view text);

struct Null {};
struct Number {
  double value = 0.0;  ///< finite
  bool is_hexadecimal = false;
};
struct Array {
  std::vector<double> values;
  LONG lower_bound = 0;
};
/// An argument as it was typed; a text is UTF-8, or bytes that are not.
using Literal = std::variant<Null, bool, Number, std::string, Array>;

/// "Name" or "Name(argument, ...)".
struct Element {
  std::string name;
  std::vector<Literal> arguments;
};
using Path = std::vector<Element>;

enum class Verb {
  kNothing,
  kMember,
  kNew,
  kRelease,
  kQuery,
  kSupports,
  kTrail,
  kSleep,
  kHelp,
  kQuit
};

struct Command {
  Verb verb = Verb::kNothing;       ///< kNothing: an empty line or a comment
  Path path;                        ///< of kMember; of kSupports and kHelp, empty for the root
  std::optional<Literal> assigned;  ///< what a property is set to
  IID iid{};
  std::chrono::milliseconds time{0};
};

/// Throws Fault.
Command ParseCommand(std::string_view line);

/// The words that begin a command which is no path.
const std::vector<std::string_view>& VerbNames();

/// A line that is being typed: the elements that are complete, and the start of the next name.
struct Unfinished {
  Path path;
  std::string_view name;
};
/// Nothing where the end of the line is not a place for a name.
std::optional<Unfinished> ParseUnfinished(std::string_view line);

}  // namespace shell
