// Where the console's lines come from.
#pragma once

#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace shell {

class LineSource {
 public:
  LineSource() = default;
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;
  virtual ~LineSource() = default;

  /// The next line without its end, which may be CR LF; nothing at the end of the input.
  virtual std::optional<std::string> Next() = 0;
};

/// Lines of a stream, which must outlive it.
std::unique_ptr<LineSource> LinesOf(std::istream& stream);

/// What may stand for the name that a line ends with.
struct Completion {
  std::string_view typed;  ///< the part of the name that is there, at the end of the line
  std::vector<std::string> names;
};
using Complete = std::function<Completion(std::string_view line)>;

/// Lines that a person types at the terminal, with a prompt; where there is a library for it with
/// editing, a history, and completion by Tab.
std::unique_ptr<LineSource> LinesOfTerminal(const char* prompt, const Complete& complete);

}  // namespace shell
