// A file that several processes write lines to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace zevisa {

/// What is appended goes in one piece behind all that is there, whoever wrote it. Never waits for a
/// reader. One thread at a time.
class AppendFile {
 public:
  AppendFile() = default;
  ~AppendFile() { Close(); }
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;

  /// Opens the file, or makes it; closes the one before. False when that cannot be, and for what is
  /// neither a file nor a device of characters.
  bool Open(const std::filesystem::path& path);
  void Close();
  [[nodiscard]] bool IsOpen() const { return handle_ != kNone; }

  /// How many of the bytes were written; fewer on a full disk.
  [[nodiscard]] std::size_t Append(std::string_view bytes) const;
  /// Bytes, whoever wrote them; 0 for a device.
  [[nodiscard]] std::uint64_t Size() const;

  /// Whether the path still leads to this file: others may have renamed or removed it.
  [[nodiscard]] bool IsAt(const std::filesystem::path& path) const;
  /// A name for the file that it keeps when it is renamed, one for all processes.
  [[nodiscard]] std::string Identity() const;
  /// Renames a file that processes have open, and takes the place of another that they may have
  /// open, too.
  static bool Replace(const std::filesystem::path& from, const std::filesystem::path& to);

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t handle_ = kNone;
};

}  // namespace zevisa
