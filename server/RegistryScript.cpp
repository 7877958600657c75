#include "server/RegistryScript.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <utility>

namespace server {
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
      // A doubled apostrophe stands for one; the text continues.
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

struct RootName {
  std::string_view name;
  std::string_view long_name;
};
constexpr RootName kRoots[] = {
    {"HKCR", "HKEY_CLASSES_ROOT"}, {"HKCU", "HKEY_CURRENT_USER"}, {"HKLM", "HKEY_LOCAL_MACHINE"}};

/// The bytes of a text with its terminator.
std::vector<std::uint8_t> TextData(const os::WideString& text) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.c_str());
  return {bytes, bytes + (text.size() + 1) * sizeof(os::WideChar)};
}

/// Texts separated by \0; the last one has two terminators.
std::vector<std::uint8_t> TextsData(os::WideString texts) {
  constexpr os::WideChar kSeparator[] = {'\\', '0', 0};
  for (std::size_t at = 0; (at = texts.find(kSeparator, at)) != texts.npos;) {
    texts.replace(at, 2, 1, 0);
  }
  texts += os::WideChar{};
  return TextData(texts);
}

/// A number of 32 bits, its lowest byte first; nothing for other texts.
std::optional<std::vector<std::uint8_t>> NumberData(std::string_view text) {
  const bool is_hexadecimal = text.starts_with("0x");
  if (is_hexadecimal) text.remove_prefix(2);
  std::uint32_t number = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), number, is_hexadecimal ? 16 : 10);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  std::vector<std::uint8_t> data;
  for (int shift = 0; shift < 32; shift += 8) {
    data.push_back(static_cast<std::uint8_t>(number >> shift));
  }
  return data;
}

/// Bytes of two hexadecimal digits each; nothing for other texts.
std::optional<std::vector<std::uint8_t>> BinaryData(std::string_view text) {
  std::vector<std::uint8_t> data(text.size() / 2);
  for (std::size_t i = 0; i < data.size(); ++i) {
    const char* const digits = text.data() + 2 * i;
    if (std::from_chars(digits, digits + 2, data[i], 16).ptr != digits + 2) return std::nullopt;
  }
  if (text.size() % 2 != 0) return std::nullopt;
  return data;
}

/// The deepest nesting of keys that a registry allows.
constexpr int kDeepest = 512;

class Parser {
 public:
  Parser(std::string_view script, const Replacements& replacements)
      : words_(script), replacements_(replacements) {}

  std::vector<ScriptKey> Roots() {
    std::vector<ScriptKey> roots;
    do {
      const Word name = words_.TakeText("a root key");
      const auto* const root = std::find_if(
          std::begin(kRoots), std::end(kRoots),
          [&name](const RootName& row) { return name.Is(row.name) || name.Is(row.long_name); });
      if (root == std::end(kRoots)) Fail(name.line, name.text + " is no root key");
      const os::WideString short_name = os::ToWide(root->name, os::kUtf8CodePage);
      roots.push_back({short_name, KeyRemoval::kNever, {}, {}});
      words_.Require("{");
      Content(roots.back(), false);
    } while (!words_.AtEnd());
    return roots;
  }

 private:
  /// What stands between the braces of a key.
  void Content(ScriptKey& key, bool may_have_values, int depth = 0) {
    while (!words_.TakeIf("}")) {
      if (may_have_values && words_.TakeIf("val")) {
        const os::WideString name = Replaced(words_.TakeText("a value's name"));
        key.values.push_back(Value(name));
      } else {
        key.keys.push_back(Key(depth + 1));
      }
    }
  }

  ScriptKey Key(int depth) {
    ScriptKey key;
    if (words_.TakeIf("NoRemove")) {
      key.removal = KeyRemoval::kNever;
    } else if (words_.TakeIf("ForceRemove")) {
      key.removal = KeyRemoval::kForced;
    } else if (words_.TakeIf("Delete")) {
      key.removal = KeyRemoval::kBefore;
    }
    const Word name = words_.TakeText("a key's name");
    if (name.Is("val")) Fail(name.line, "no value can stand here");
    key.name = Replaced(name);
    // An empty path would name the parent key, and ForceRemove would remove that.
    if (key.name.find_first_not_of('\\') == key.name.npos) Fail(name.line, "a key without a name");
    if (words_.NextIs("=")) key.values.push_back(Value({}));
    if (depth == kDeepest) Fail(name.line, "keys are nested too deep");
    if (words_.TakeIf("{")) Content(key, true, depth);
    return key;
  }

  ScriptValue Value(const os::WideString& name) {
    words_.Require("=");
    const Word type = words_.Take("a value's type");
    const Word word = words_.Take("a text");
    if (!word.quoted) Fail(word.line, "a text in apostrophes should be where " + word.text + " is");
    const os::WideString text = Replaced(word);
    if (type.Is("s")) return {name, ValueType::kText, TextData(text)};
    if (type.Is("m")) return {name, ValueType::kTexts, TextsData(text)};
    const std::string narrow = os::ToNarrow(text, os::kUtf8CodePage);
    if (type.Is("d")) return {name, ValueType::kNumber, Valid(NumberData(narrow), word)};
    if (type.Is("b")) return {name, ValueType::kBinary, Valid(BinaryData(narrow), word)};
    Fail(type.line, type.text + " is no type of a value");
  }

  static std::vector<std::uint8_t> Valid(std::optional<std::vector<std::uint8_t>> data,
                                         const Word& word) {
    if (!data) Fail(word.line, word.text + " is no value of its type");
    return std::move(*data);
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

}  // namespace server
