// A terminal with the editline library.
#include <histedit.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "zk4n/shell/LineSource.h"

namespace shell {
namespace {

constexpr int kHistoryLines = 1000;

/// The library hands itself, and with it its client data, to its callbacks.
class EditedLines final : public LineSource {
 public:
  EditedLines(const char* prompt, Complete complete)
      : prompt_(prompt),
        complete_(std::move(complete)),
        history_(history_init()),
        editor_(el_init("zk4n", stdin, stdout, stderr)) {
    HistEvent event{};
    history(history_.get(), &event, H_SETSIZE, kHistoryLines);
    history(history_.get(), &event, H_SETUNIQUE, 1);
    el_set(editor_.get(), EL_CLIENTDATA, this);
    el_set(editor_.get(), EL_PROMPT, &Prompt);
    el_set(editor_.get(), EL_EDITOR, "emacs");
    el_set(editor_.get(), EL_SIGNAL, 1);  // a signal finds the terminal as it was
    el_set(editor_.get(), EL_HIST, &history, history_.get());
    el_set(editor_.get(), EL_ADDFN, "zk4n-complete", "Complete the name of a member", &OnTab);
    el_set(editor_.get(), EL_BIND, "^I", "zk4n-complete", nullptr);
    // While a line is typed Ctrl-C discards it, instead of ending the program and with it the
    // session: keys make no signals then.
    el_set(editor_.get(), EL_SETTY, "-d", "-isig", nullptr);
    el_set(editor_.get(), EL_BIND, "^C", "em-kill-line", nullptr);
    el_set(editor_.get(), EL_BIND, "^R", "em-inc-search-prev", nullptr);
  }

  std::optional<std::string> Next() override {
    int size = 0;
    const char* const text = el_gets(editor_.get(), &size);
    if (text == nullptr || size <= 0) {
      std::fputs("\n", stdout);
      return std::nullopt;
    }
    std::string line(text, static_cast<std::size_t>(size));
    HistEvent event{};
    if (line.find_first_not_of(" \t\r\n") != std::string::npos) {
      history(history_.get(), &event, H_ENTER, line.c_str());
    }
    line.erase(line.find_last_not_of("\r\n") + 1);
    return line;
  }

 private:
  struct End {
    void operator()(EditLine* editor) const { el_end(editor); }
    void operator()(History* lines) const { history_end(lines); }
  };

  static EditedLines& Of(EditLine* editor) {
    void* data = nullptr;
    el_get(editor, EL_CLIENTDATA, &data);
    return *static_cast<EditedLines*>(data);
  }

  static char* Prompt(EditLine* editor) { return Of(editor).prompt_.data(); }

  static unsigned char OnTab(EditLine* editor, int /*key*/) {
    const LineInfo* const line = el_line(editor);
    const std::string_view typed(line->buffer,
                                 static_cast<std::size_t>(line->cursor - line->buffer));
    const Completion completion = Of(editor).complete_(typed);
    if (completion.names.empty()) return CC_ERROR;
    std::string common = completion.names.front();
    for (const std::string& name : completion.names) {
      common.erase(std::ranges::mismatch(common, name).in1, common.end());
    }
    if (common.size() > completion.typed.size()) {
      el_insertstr(editor, common.substr(completion.typed.size()).c_str());
      return CC_REFRESH;
    }
    std::fputs("\n", stdout);
    for (const std::string& name : completion.names) std::printf("%s  ", name.c_str());
    std::fputs("\n", stdout);
    return CC_REDISPLAY;
  }

  std::string prompt_;
  Complete complete_;
  std::unique_ptr<History, End> history_;
  std::unique_ptr<EditLine, End> editor_;  // ends before its history
};

}  // namespace

std::unique_ptr<LineSource> LinesOfTerminal(const char* prompt, const Complete& complete) {
  return std::make_unique<EditedLines>(prompt, complete);
}

}  // namespace shell
