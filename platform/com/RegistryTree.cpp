#include "platform/com/RegistryTree.h"

#include <algorithm>
#include <utility>

#include "platform/os/Text.h"

namespace {

constexpr std::string_view kHeading = "Zentrel registry 1";

char16_t Fold(char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c; }

/// Takes the first name off the path; empty when there is no more. Backslashes in excess do not
/// count.
std::u16string_view TakeName(std::u16string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of(u'\\'), path.size()));
  const std::u16string_view name = path.substr(0, path.find(u'\\'));
  path.remove_prefix(name.size());
  return name;
}

template <typename Items, typename NameOf>
auto FindName(Items& items, std::u16string_view name, NameOf name_of) {
  return std::find_if(items.begin(), items.end(),
                      [&](const auto& item) { return EqualNames(name_of(item), name); });
}

constexpr auto kKeyName = [](const RegistryKey& key) -> std::u16string_view { return key.name(); };
constexpr auto kValueName = [](const RegistryValue& value) -> std::u16string_view {
  return value.name;
};

std::string Utf8(std::u16string_view text) { return os::ToNarrow(text, os::kUtf8CodePage); }

std::string Quoted(std::u16string_view text) {
  std::string quoted = "\"";
  for (const char c : Utf8(text)) {
    switch (c) {
      case '\n':
        quoted += "\\n";
        break;
      case '\r':
        quoted += "\\r";
        break;
      case '"':
      case '\\':
        quoted += '\\';
        [[fallthrough]];
      default:
        quoted += c;
    }
  }
  return quoted + '"';
}

/// Takes a quoted text off the line; nothing when there is none.
std::optional<std::u16string> TakeQuoted(std::string_view& line) {
  if (!line.starts_with('"')) return std::nullopt;
  std::string text;
  for (std::size_t i = 1; i < line.size(); ++i) {
    if (line[i] == '"') {
      line.remove_prefix(i + 1);
      return os::ToWide(text, os::kUtf8CodePage);
    }
    if (line[i] != '\\') {
      text += line[i];
      continue;
    }
    if (++i == line.size()) break;
    text += line[i] == 'n' ? '\n' : line[i] == 'r' ? '\r' : line[i];
  }
  return std::nullopt;
}

/// Takes a value's line; false when it is none.
bool ParseValue(std::string_view line, RegistryKey& key) {
  std::optional<std::u16string> name = u"";
  if (line.starts_with('@')) {
    line.remove_prefix(1);
  } else {
    name = TakeQuoted(line);
  }
  if (!name || !line.starts_with('=')) return false;
  line.remove_prefix(1);
  const auto text = TakeQuoted(line);
  if (!text || !line.empty()) return false;
  key.SetValue(*name, *text);
  return true;
}

void Format(const RegistryKey& key, const std::string& path, std::string& text) {
  text += "\n[" + path + "]\n";
  for (const RegistryValue& value : key.values()) {
    text += (value.name.empty() ? "@" : Quoted(value.name)) + "=" + Quoted(value.text) + "\n";
  }
  for (const RegistryKey& subkey : key.subkeys()) {
    Format(subkey, path + "\\" + Utf8(subkey.name()), text);
  }
}

}  // namespace

bool EqualNames(std::u16string_view a, std::u16string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return Fold(x) == Fold(y); });
}

const RegistryKey* RegistryKey::Find(std::u16string_view path) const {
  const std::u16string_view name = TakeName(path);
  if (name.empty()) return this;
  const auto found = FindName(subkeys_, name, kKeyName);
  return found == subkeys_.end() ? nullptr : found->Find(path);
}

RegistryKey* RegistryKey::Find(std::u16string_view path) {
  return const_cast<RegistryKey*>(std::as_const(*this).Find(path));
}

RegistryKey& RegistryKey::Create(std::u16string_view path) {
  const std::u16string_view name = TakeName(path);
  if (name.empty()) return *this;
  const auto found = FindName(subkeys_, name, kKeyName);
  RegistryKey& next =
      found == subkeys_.end() ? subkeys_.emplace_back(RegistryKey(std::u16string(name))) : *found;
  return next.Create(path);
}

bool RegistryKey::Remove(std::u16string_view path) {
  const std::u16string_view name = TakeName(path);
  const auto found = FindName(subkeys_, name, kKeyName);
  if (name.empty() || found == subkeys_.end()) return false;
  if (path.find_first_not_of(u'\\') != path.npos) return found->Remove(path);
  subkeys_.erase(found);
  return true;
}

void RegistryKey::Clear() {
  values_.clear();
  subkeys_.clear();
}

const std::u16string* RegistryKey::Value(std::u16string_view name) const {
  const auto found = FindName(values_, name, kValueName);
  return found == values_.end() ? nullptr : &found->text;
}

void RegistryKey::SetValue(std::u16string_view name, std::u16string_view text) {
  const auto found = FindName(values_, name, kValueName);
  if (found == values_.end()) {
    values_.push_back({std::u16string(name), std::u16string(text)});
  } else {
    found->text = text;
  }
}

bool RegistryKey::RemoveValue(std::u16string_view name) {
  const auto found = FindName(values_, name, kValueName);
  if (found == values_.end()) return false;
  values_.erase(found);
  return true;
}

std::string FormatRegistry(const RegistryKey& root) {
  std::string text(kHeading);
  text += '\n';
  for (const RegistryKey& key : root.subkeys()) Format(key, Utf8(key.name()), text);
  return text;
}

std::optional<RegistryKey> ParseRegistry(std::string_view text) {
  RegistryKey root;
  RegistryKey* key = nullptr;
  for (bool first = true; !text.empty(); first = false) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (first) {
      if (line != kHeading) return std::nullopt;
    } else if (line.starts_with('[') && line.ends_with(']')) {
      key = &root.Create(os::ToWide(line.substr(1, line.size() - 2), os::kUtf8CodePage));
    } else if (!line.empty() && (key == nullptr || !ParseValue(line, *key))) {
      return std::nullopt;
    }
  }
  return root;
}
