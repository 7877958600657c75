#include "visa/Settings.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>

#include "platform/os/Files.h"
#include "visa/ResourceName.h"

namespace zevisa {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = 1 << 20;
constexpr std::size_t kMostProblems = 50;
constexpr std::size_t kLongestExcerpt = 60;

struct SwitchKey {
  std::string_view name;
  bool Settings::*place;
};
constexpr SwitchKey kSwitches[] = {{"keep-alive", &Settings::keep_alive},
                                   {"no-delay", &Settings::no_delay}};

struct NumberKey {
  std::string_view name;
  std::uint32_t Settings::*place;
  std::uint32_t minimum;
  std::uint32_t maximum;
};
// What the systems take for keep-alive; a read that waits for less than 20 ms would fail wherever
// another program has the processor.
constexpr NumberKey kNumbers[] = {{"keep-alive-idle", &Settings::keep_alive_idle, 1, 32767},
                                  {"keep-alive-interval", &Settings::keep_alive_interval, 1, 32767},
                                  {"keep-alive-probes", &Settings::keep_alive_probes, 1, 127},
                                  {"connect-ceiling", &Settings::connect_ceiling, 20, 3600000},
                                  {"read-ceiling", &Settings::read_ceiling, 20, 3600000},
                                  {"trace-data", &Settings::trace_data, 0, 1 << 20},
                                  {"trace-size", &Settings::trace_size, 64, 1 << 22}};

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

/// A piece of the file for a message: short, and nothing that a terminal would obey.
std::string Excerpt(std::string_view text) {
  std::size_t size = std::min(text.size(), kLongestExcerpt);
  const auto is_inside_character = [&] { return (text[size] & '\xC0') == '\x80'; };
  while (size > 0 && size < text.size() && is_inside_character()) --size;
  std::string excerpt(text.substr(0, size));
  const auto is_control = [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; };
  std::ranges::replace_if(excerpt, is_control, '?');
  return size < text.size() ? excerpt + "..." : excerpt;
}

/// Whether a pattern with "*" (anything) and "?" (one character) is the whole text. Goes back to
/// the last "*" only, so that no pattern takes long.
bool Matches(std::string_view pattern, std::string_view text) {
  std::size_t p = 0;
  std::size_t t = 0;
  std::size_t after_star = pattern.npos;
  std::size_t star_text = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      after_star = ++p;
      star_text = t;
    } else if (p < pattern.size() && (pattern[p] == '?' || Upper(pattern[p]) == Upper(text[t]))) {
      ++p;
      ++t;
    } else if (after_star != pattern.npos) {
      p = after_star;
      t = ++star_text;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == pattern.npos;
}

/// A pattern in the canonical form of names: the board told, no brackets around an IPv6 address.
std::string CanonicalPattern(std::string_view text) {
  std::string pattern(text);
  std::erase_if(pattern, [](char c) { return c == '[' || c == ']'; });
  constexpr std::string_view kInterface = "TCPIP::";
  if (EqualsIgnoringCase(std::string_view(pattern).substr(0, kInterface.size()), kInterface)) {
    pattern.insert(kInterface.find(':'), 1, '0');
  }
  return pattern;
}

std::string SetSwitch(bool& place, std::string_view value) {
  const bool on = EqualsIgnoringCase(value, "on");
  if (!on && !EqualsIgnoringCase(value, "off")) return "neither on nor off: " + Excerpt(value);
  place = on;
  return {};
}

std::string SetNumber(std::uint32_t& place, std::string_view value, const NumberKey& key) {
  std::uint32_t number = 0;
  const char* const end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, number);
  if (error != std::errc{} || stop != end || number < key.minimum || number > key.maximum) {
    return "not a number from " + std::to_string(key.minimum) + " to " +
           std::to_string(key.maximum) + ": " + Excerpt(value);
  }
  place = number;
  return {};
}

/// Returns what is wrong; empty when the value is set.
std::string Set(Settings& settings, std::string_view key, std::string_view value) {
  const auto is_key = [&](std::string_view name) { return EqualsIgnoringCase(name, key); };
  const auto* const of_switch = std::ranges::find_if(kSwitches, is_key, &SwitchKey::name);
  if (of_switch != std::end(kSwitches)) return SetSwitch(settings.*of_switch->place, value);
  const auto* const of_number = std::ranges::find_if(kNumbers, is_key, &NumberKey::name);
  if (of_number != std::end(kNumbers)) {
    return SetNumber(settings.*of_number->place, value, *of_number);
  }
  if (!is_key("trace")) return "no such key: " + Excerpt(key);
  settings.trace = value;
  return {};
}

/// Goes through the lines; keeps what the section in force says, and looks at the others too.
class Reader {
 public:
  explicit Reader(std::string_view resource) : resource_(resource) {}

  void TakeLine(std::string_view line) {
    ++line_number_;
    const std::string problem = Take(Trimmed(line));
    if (problem.empty()) return;
    if (++problem_count_ > kMostProblems) return;
    found_.problems.push_back("line " + std::to_string(line_number_) + ": " + problem);
  }

  FoundSettings Finish() {
    if (problem_count_ > kMostProblems) {
      found_.problems.push_back("and " + std::to_string(problem_count_ - kMostProblems) + " more");
    }
    return std::move(found_);
  }

 private:
  std::string Take(std::string_view line) {
    if (line.empty() || line.front() == '#' || line.front() == ';') return {};
    if (line.front() == '[') return TakeSection(line);
    const auto equals = line.find('=');
    if (equals == line.npos) return "neither [section] nor key = value: " + Excerpt(line);
    if (!has_section_) return "no [section] before it: " + Excerpt(line);
    const std::string_view key = Trimmed(line.substr(0, equals));
    const std::string_view value = Trimmed(line.substr(equals + 1));
    return Set(is_in_force_ ? found_.values : others_, key, value);
  }

  // Behind a section that is none, no key counts.
  std::string TakeSection(std::string_view line) {
    has_section_ = true;
    is_in_force_ = false;
    const std::string_view pattern =
        line.back() == ']' ? Trimmed(line.substr(1, line.size() - 2)) : std::string_view();
    if (pattern.empty() || pattern.size() >= VI_FIND_BUFLEN) {
      return "no [pattern of a resource name]: " + Excerpt(line);
    }
    if (found_.section.empty() && Matches(CanonicalPattern(pattern), resource_)) {
      is_in_force_ = true;
      found_.section = pattern;
    }
    return {};
  }

  const std::string_view resource_;
  FoundSettings found_;
  Settings others_;
  std::size_t line_number_ = 0;
  std::size_t problem_count_ = 0;
  bool has_section_ = false;
  bool is_in_force_ = false;
};

/// Empty when there is no file.
fs::path FileInForce() {
  if (fs::path named = os::PathFromEnvironment("ZEVISA_CONFIG"); !named.empty()) return named;
  for (const fs::path& folder : os::SettingsFolders()) {
    fs::path file = folder / "zentrel" / "zevisa.ini";
    std::error_code none;
    if (fs::exists(file, none)) return file;
  }
  return {};
}

}  // namespace

FoundSettings ReadSettings(std::string_view text, std::string_view resource) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";  // that some editors begin UTF-8 with
  if (text.starts_with(kMark)) text.remove_prefix(kMark.size());
  Reader reader(resource);
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    reader.TakeLine(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return reader.Finish();
}

FoundSettings LoadSettings(std::string_view resource) {
  const fs::path file = FileInForce();
  if (file.empty()) return {};
  const auto text = os::ReadWholeFile(file, kLargestFile);
  FoundSettings found = ReadSettings(text.value_or(""), resource);
  const std::u8string name = file.u8string();
  found.file.assign(name.begin(), name.end());
  std::error_code unknown;
  const bool is_read = text && (!text->empty() || fs::file_size(file, unknown) == 0);
  if (!is_read) found.problems.emplace_back("the file cannot be read, or is larger than 1 MiB");
  return found;
}

}  // namespace zevisa
