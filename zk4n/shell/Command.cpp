#include "zk4n/shell/Command.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace shell {
namespace {

constexpr std::size_t kExcerpt = 30;

struct NamedVerb {
  std::string_view name;
  Verb verb;
};
constexpr std::array kVerbs{
    NamedVerb{"new", Verb::kNew},     NamedVerb{"release", Verb::kRelease},
    NamedVerb{"query", Verb::kQuery}, NamedVerb{"supports", Verb::kSupports},
    NamedVerb{"trail", Verb::kTrail}, NamedVerb{"sleep", Verb::kSleep},
    NamedVerb{"help", Verb::kHelp},   NamedVerb{"quit", Verb::kQuit}};

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

/// The line and how far it is read.
class Reader {
 public:
  explicit Reader(std::string_view line) : rest_(line) {}

  [[nodiscard]] std::string_view Rest() const { return rest_; }

  /// Whether nothing but blanks is left.
  bool AtEnd() {
    SkipBlanks();
    return rest_.empty();
  }

  /// Takes the character, after blanks, if it is the next one.
  bool Take(char c) {
    SkipBlanks();
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void Expect(char c, const char* where) {
    if (!Take(c)) Unexpected(std::string("expected ") + c + " " + where);
  }

  void ExpectEnd() {
    if (!AtEnd()) Unexpected("expected the end of the line");
  }

  /// A name; empty when there is none.
  std::string_view Name() {
    SkipBlanks();
    std::size_t size = 0;
    while (size < rest_.size() && (IsLetter(rest_[size]) || (size > 0 && IsDigit(rest_[size])))) {
      ++size;
    }
    return TakeFirst(size);
  }

  std::string_view TakeFirst(std::size_t size) {
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  /// Throws Fault, telling what stands there instead.
  [[noreturn]] void Unexpected(const std::string& what) {
    SkipBlanks();
    if (rest_.empty()) throw Fault(what + ", not the end of the line");
    throw Fault(what + ", not: " + Excerpt(rest_));
  }

 private:
  void SkipBlanks() {
    while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
  }

  std::string_view rest_;
};

/// The length of what can be a number's text.
std::size_t NumberLength(std::string_view text) {
  std::size_t size = 0;
  while (size < text.size()) {
    const char c = text[size];
    const bool is_sign = c == '+' || c == '-';
    const bool follows_exponent = size > 0 && (text[size - 1] == 'e' || text[size - 1] == 'E');
    if (!IsDigit(c) && !IsLetter(c) && c != '.' && !(is_sign && (size == 0 || follows_exponent))) {
      break;
    }
    ++size;
  }
  return size;
}

std::optional<Number> ParseNumber(std::string_view text) {
  const bool is_negative = text.starts_with('-');
  if (is_negative || text.starts_with('+')) text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  Number number;
  std::from_chars_result parsed{};
  if (text.starts_with("0x") || text.starts_with("0X")) {
    number.is_hexadecimal = true;
    std::uint64_t bits = 0;
    parsed = std::from_chars(text.data() + 2, end, bits, 16);
    number.value = static_cast<double>(bits);
  } else {
    // A sign is read already, and the words for what is not finite are no numbers here.
    if (text.empty() || !(IsDigit(text.front()) || text.front() == '.')) return std::nullopt;
    parsed = std::from_chars(text.data(), end, number.value);
  }
  if (parsed.ec != std::errc{} || parsed.ptr != end) return std::nullopt;
  if (is_negative) number.value = -number.value;
  return number;
}

Number ReadNumber(Reader& reader) {
  reader.AtEnd();
  const std::string_view rest = reader.Rest();
  const auto number = ParseNumber(rest.substr(0, NumberLength(rest)));
  if (!number) reader.Unexpected("expected a number");
  reader.TakeFirst(NumberLength(rest));
  return *number;
}

/// A whole number in a range.
double ReadWhole(Reader& reader, double lowest, double highest, const std::string& what) {
  const Number number = ReadNumber(reader);
  if (number.value != std::trunc(number.value) || number.value < lowest || number.value > highest) {
    throw Fault(what + " out of range");
  }
  return number.value;
}

/// Behind its first quote.
std::string ReadText(Reader& reader) {
  std::string text;
  while (true) {
    const std::string_view rest = reader.Rest();
    const std::size_t size = rest.find_first_of("\"\\");
    if (size == std::string_view::npos) throw Fault("a text without its closing quote");
    text += reader.TakeFirst(size);
    if (reader.TakeFirst(1) == "\"") return text;
    const std::string_view escaped = reader.TakeFirst(1);
    if (escaped != "\"" && escaped != "\\") {
      throw Fault("after \\ in a text only \" or \\ may stand");
    }
    text += escaped;
  }
}

/// Behind its opening bracket.
Array ReadArray(Reader& reader) {
  Array array;
  if (!reader.Take(']')) {
    do {
      array.values.push_back(ReadNumber(reader).value);
    } while (reader.Take(','));
    reader.Expect(']', "at the end of an array");
  }
  if (reader.Take('@')) {
    using Limits = std::numeric_limits<LONG>;
    array.lower_bound = static_cast<LONG>(
        ReadWhole(reader, Limits::min(), Limits::max() - static_cast<double>(array.values.size()),
                  "lower bound"));
  }
  return array;
}

Literal ReadLiteral(Reader& reader) {
  if (reader.Take('"')) return ReadText(reader);
  if (reader.Take('[')) return ReadArray(reader);
  Reader after_word = reader;
  const std::string_view word = after_word.Name();
  if (word.empty()) return ReadNumber(reader);
  if (word != "true" && word != "false" && word != "null") reader.Unexpected("expected a value");
  reader = after_word;
  if (word == "null") return Null{};
  return word == "true";
}

/// Behind the opening parenthesis.
std::vector<Literal> ReadArguments(Reader& reader) {
  std::vector<Literal> arguments;
  if (reader.Take(')')) return arguments;
  do {
    arguments.push_back(ReadLiteral(reader));
  } while (reader.Take(','));
  reader.Expect(')', "at the end of the arguments");
  return arguments;
}

/// The first name has been read.
Path ReadPath(Reader& reader, std::string_view first) {
  Path path;
  std::string_view name = first;
  while (true) {
    path.push_back({std::string(name), {}});
    if (reader.Take('(')) path.back().arguments = ReadArguments(reader);
    if (!reader.Take('.')) return path;
    name = reader.Name();
    if (name.empty()) reader.Unexpected("expected a member's name");
  }
}

int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
IID ReadIid(Reader& reader) {
  constexpr std::string_view kShape = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
  reader.AtEnd();
  const std::string_view text = reader.Rest().substr(0, kShape.size());
  std::array<std::uint8_t, 16> bytes{};
  std::size_t digits = 0;
  for (std::size_t i = 0; i < kShape.size(); ++i) {
    const int digit = i < text.size() ? HexDigit(text[i]) : -1;
    if (i >= text.size() || (kShape[i] == 'x' ? digit < 0 : text[i] != kShape[i])) {
      reader.Unexpected("expected an identifier {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}");
    }
    if (kShape[i] != 'x') continue;
    bytes.at(digits / 2) = static_cast<std::uint8_t>(bytes.at(digits / 2) * 16 + digit);
    ++digits;
  }
  reader.TakeFirst(kShape.size());
  IID iid{};
  const auto number = [&bytes](std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + size; ++i) value = value << 8 | bytes.at(i);
    return value;
  };
  iid.Data1 = number(0, 4);
  iid.Data2 = static_cast<std::uint16_t>(number(4, 2));
  iid.Data3 = static_cast<std::uint16_t>(number(6, 2));
  std::copy(bytes.begin() + 8, bytes.end(), std::begin(iid.Data4));
  return iid;
}

/// What follows a verb.
void ReadOperand(Reader& reader, Command& command) {
  switch (command.verb) {
    case Verb::kQuery:
    case Verb::kSupports:
      command.iid = ReadIid(reader);
      break;
    case Verb::kSleep:
      command.time = std::chrono::milliseconds(static_cast<std::int64_t>(
          ReadWhole(reader, 0.0, std::numeric_limits<std::int32_t>::max(), "milliseconds")));
      break;
    case Verb::kHelp:
      if (const std::string_view first = reader.Name(); !first.empty()) {
        command.path = ReadPath(reader, first);
      }
      break;
    default:
      break;
  }
}

std::optional<Verb> VerbOf(std::string_view name) {
  for (const NamedVerb& verb : kVerbs) {
    if (verb.name == name) return verb.verb;
  }
  return std::nullopt;
}

}  // namespace

std::string Excerpt(std::string_view text) {
  std::string excerpt;
  for (const char c : text.substr(0, kExcerpt)) excerpt += c >= ' ' && c <= '~' ? c : '?';
  return excerpt + (text.size() > kExcerpt ? "..." : "");
}

Command ParseCommand(std::string_view line) {
  Reader reader(line);
  Command command;
  if (reader.AtEnd() || reader.Take('#')) return command;
  const std::string_view name = reader.Name();
  if (name.empty()) reader.Unexpected("expected a command or a member's name");
  if (const auto verb = VerbOf(name)) {
    command.verb = *verb;
    ReadOperand(reader, command);
  } else {
    command.verb = Verb::kMember;
    command.path = ReadPath(reader, name);
    Reader after_word = reader;
    if (reader.Take('=')) {
      command.assigned = ReadLiteral(reader);
    } else if (after_word.Name() == "supports") {
      reader = after_word;
      command.verb = Verb::kSupports;
      ReadOperand(reader, command);
    }
  }
  reader.ExpectEnd();
  return command;
}

const std::vector<std::string_view>& VerbNames() {
  static const std::vector<std::string_view> names = [] {
    std::vector<std::string_view> list;
    list.reserve(kVerbs.size());
    for (const NamedVerb& verb : kVerbs) list.push_back(verb.name);
    return list;
  }();
  return names;
}

std::optional<Unfinished> ParseUnfinished(std::string_view line) {
  try {
    Reader reader(line);
    Unfinished unfinished;
    while (true) {
      unfinished.name = reader.Name();
      if (reader.Rest().empty()) return unfinished;
      if (unfinished.name == "help" && unfinished.path.empty()) continue;
      Element element{std::string(unfinished.name), {}};
      if (reader.Take('(')) element.arguments = ReadArguments(reader);
      if (element.name.empty() || !reader.Take('.')) return std::nullopt;
      unfinished.path.push_back(std::move(element));
    }
  } catch (const Fault&) {
    return std::nullopt;
  }
}

}  // namespace shell
