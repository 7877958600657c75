#include "server/RegistryScript.h"

#include <algorithm>
#include <optional>

namespace {

struct Word {
  std::string text;
  bool quoted = false;
  int line = 0;

  /// Whether it is this word of the syntax; a quoted one never is.
  [[nodiscard]] bool Is(std::string_view syntax) const { return !quoted && text == syntax; }
};

constexpr std::string_view kBlanks = " \t\r\n";

[[noreturn]] void Fail(int line, const std::string& what) {
  throw ScriptError("line " + std::to_string(line) + ": " + what);
}

/// Takes the words of a script one after the other.
class Words {
 public:
  explicit Words(std::string_view script) : rest_(script) { Advance(); }

  [[nodiscard]] bool AtEnd() const { return !next_; }
  [[nodiscard]] bool NextIs(std::string_view syntax) const { return next_ && next_->Is(syntax); }

  Word Take(const char* wanted) {
    if (!next_) Fail(line_, std::string("the script ends where ") + wanted + " should be");
    Word word = std::move(*next_);
    Advance();
    return word;
  }

  /// A name or text, quoted or not, that is no sign of the syntax.
  Word TakeText(const char* wanted) {
    Word word = Take(wanted);
    if (word.Is("{") || word.Is("}") || word.Is("=")) {
      Fail(word.line, std::string(wanted) + " should be where " + word.text + " is");
    }
    return word;
  }

  bool TakeIf(std::string_view syntax) {
    const bool is_next = NextIs(syntax);
    if (is_next) Advance();
    return is_next;
  }

  void Require(const char* syntax) {
    const Word word = Take(syntax);
    if (!word.Is(syntax)) {
      Fail(word.line, std::string(syntax) + " should be where " + word.text + " is");
    }
  }

 private:
  void Advance() {
    const std::size_t blanks = std::min(rest_.find_first_not_of(kBlanks), rest_.size());
    Skip(blanks);
    if (rest_.empty()) {
      next_.reset();
    } else if (rest_.front() == '\'') {
      next_ = Quoted();
    } else {
      const std::size_t size = std::min(rest_.find_first_of(kBlanks), rest_.size());
      next_ = Word{std::string(rest_.substr(0, size)), false, line_};
      Skip(size);
    }
  }

  Word Quoted() {
    Word word{{}, true, line_};
    do {
      const std::size_t end = rest_.find('\'', 1);
      if (end == rest_.npos) Fail(word.line, "the closing apostrophe is missing");
      word.text += rest_.substr(1, end - 1);
      Skip(end + 1);
      // Another apostrophe at once stands for itself; the text goes on behind it.
      if (rest_.starts_with('\'')) word.text += '\'';
    } while (rest_.starts_with('\''));
    return word;
  }

  void Skip(std::size_t size) {
    line_ +=
        static_cast<int>(std::count(rest_.begin(), rest_.begin() + static_cast<long>(size), '\n'));
    rest_.remove_prefix(size);
  }

  std::string_view rest_;
  std::optional<Word> next_;
  int line_ = 1;
};

class Parser {
 public:
  Parser(std::string_view script, const Replacements& replacements)
      : words_(script), replacements_(replacements) {}

  std::vector<ScriptKey> Roots() {
    std::vector<ScriptKey> roots;
    do {
      const Word name = words_.TakeText("a root key");
      if (!name.Is("HKCR") && !name.Is("HKCU") && !name.Is("HKLM")) {
        Fail(name.line, name.text + " is no root key");
      }
      roots.push_back({Replaced(name), KeyRemoval::kNever, {}, {}});
      words_.Require("{");
      Content(roots.back(), false);
    } while (!words_.AtEnd());
    return roots;
  }

 private:
  /// What stands between the braces of a key.
  void Content(ScriptKey& key, bool may_have_values) {
    while (!words_.TakeIf("}")) {
      if (may_have_values && words_.TakeIf("val")) {
        const os::WideString name = Replaced(words_.TakeText("a value's name"));
        key.values.push_back({name, Value()});
      } else {
        key.keys.push_back(Key());
      }
    }
  }

  ScriptKey Key() {
    ScriptKey key;
    if (words_.TakeIf("NoRemove")) {
      key.removal = KeyRemoval::kNever;
    } else if (words_.TakeIf("ForceRemove")) {
      key.removal = KeyRemoval::kForced;
    }
    const Word name = words_.TakeText("a key's name");
    if (name.Is("val")) Fail(name.line, "no value can stand here");
    key.name = Replaced(name);
    // An empty path would be the key above, and a forced removal take that.
    if (key.name.find_first_not_of('\\') == key.name.npos) Fail(name.line, "a key without a name");
    if (words_.NextIs("=")) key.values.push_back({{}, Value()});
    if (words_.TakeIf("{")) Content(key, true);
    return key;
  }

  os::WideString Value() {
    words_.Require("=");
    words_.Require("s");
    const Word text = words_.Take("a text");
    if (!text.quoted) Fail(text.line, "a text in apostrophes should be where " + text.text + " is");
    return Replaced(text);
  }

  [[nodiscard]] os::WideString Replaced(const Word& word) const {
    os::WideString replaced;
    std::string_view rest = word.text;
    while (true) {
      const std::size_t begin = rest.find('%');
      replaced += os::ToWide(rest.substr(0, begin), os::kUtf8CodePage);
      if (begin == rest.npos) return replaced;
      const std::size_t end = rest.find('%', begin + 1);
      if (end == rest.npos) Fail(word.line, "% without its second in " + word.text);
      replaced += Replacement(std::string(rest.substr(begin + 1, end - begin - 1)), word.line);
      rest.remove_prefix(end + 1);
    }
  }

  [[nodiscard]] os::WideString Replacement(const std::string& name, int line) const {
    if (name.empty()) return {'%'};
    const auto found = replacements_.find(name);
    if (found == replacements_.end()) Fail(line, "nothing stands for %" + name + "%");
    return found->second;
  }

  Words words_;
  const Replacements& replacements_;
};

}  // namespace

std::vector<ScriptKey> ParseRegistryScript(std::string_view script,
                                           const Replacements& replacements) {
  return Parser(script, replacements).Roots();
}
