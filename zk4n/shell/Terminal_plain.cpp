// A terminal without a library for editing: the system's own line discipline.
#include <cstdio>
#include <iostream>

#include "zk4n/shell/LineSource.h"

namespace shell {
namespace {

class PromptedLines final : public LineSource {
 public:
  explicit PromptedLines(const char* prompt) : prompt_(prompt), lines_(LinesOf(std::cin)) {}

  std::optional<std::string> Next() override {
    std::fputs(prompt_, stdout);
    std::fflush(stdout);
    return lines_->Next();
  }

 private:
  const char* prompt_;
  std::unique_ptr<LineSource> lines_;
};

}  // namespace

std::unique_ptr<LineSource> LinesOfTerminal(const char* prompt, const Complete& /*complete*/) {
  return std::make_unique<PromptedLines>(prompt);
}

}  // namespace shell
