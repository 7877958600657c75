// The registry's keys in memory, and their form in the file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A named text; the empty name is the key's default value.
struct RegistryValue {
  std::u16string name;
  std::u16string text;
};

/// One key with all that is below it. Names of keys and values are compared without regard to the
/// case of ASCII letters; the first spelling stays. Paths are names with backslashes between them;
/// an empty path is the key itself.
class RegistryKey {
 public:
  explicit RegistryKey(std::u16string name = {}) : name_(std::move(name)) {}

  [[nodiscard]] const std::u16string& name() const { return name_; }
  [[nodiscard]] const std::vector<RegistryKey>& subkeys() const { return subkeys_; }
  [[nodiscard]] const std::vector<RegistryValue>& values() const { return values_; }

  /// The key at the path; null when there is none.
  [[nodiscard]] const RegistryKey* Find(std::u16string_view path) const;
  [[nodiscard]] RegistryKey* Find(std::u16string_view path);
  /// The key at the path, made with its parents where missing.
  RegistryKey& Create(std::u16string_view path);
  /// Removes the key at the path with all that is below it; false when there is none.
  bool Remove(std::u16string_view path);
  /// Removes all values and subkeys.
  void Clear();

  [[nodiscard]] const std::u16string* Value(std::u16string_view name) const;
  void SetValue(std::u16string_view name, std::u16string_view text);
  bool RemoveValue(std::u16string_view name);

 private:
  std::u16string name_;
  std::vector<RegistryValue> values_;
  std::vector<RegistryKey> subkeys_;
};

bool EqualNames(std::u16string_view a, std::u16string_view b);

/// The keys below `root` as UTF-8 text: a heading line, then for each key "[path]" and a line
/// "name"="text" (@="text" for the default value) for each value, with \\, \", \n and \r for those
/// characters inside quotes.
std::string FormatRegistry(const RegistryKey& root);

/// The reverse; nothing when the text is not what FormatRegistry writes. Empty text is an empty
/// registry.
std::optional<RegistryKey> ParseRegistry(std::string_view text);
