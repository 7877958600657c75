// A file that another process writes to while it is read, and that may be replaced by a new one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace os {

/// Reading hinders nobody: others write to the file, rename it and remove it meanwhile, also on
/// Windows.
class GrowingFile {
 public:
  /// Opens a regular file; see IsOpen.
  explicit GrowingFile(const std::filesystem::path& path);
  ~GrowingFile();
  GrowingFile(const GrowingFile&) = delete;
  GrowingFile& operator=(const GrowingFile&) = delete;

  /// False when there is no such file, when it cannot be read, and for what is no regular file.
  [[nodiscard]] bool IsOpen() const;
  /// What follows; 0 bytes at the end as it is now, and when reading fails.
  std::size_t Read(std::span<char> buffer);
  /// Whether the path leads to this file still, and the file holds what was read of it.
  [[nodiscard]] bool IsStillAt(const std::filesystem::path& path) const;

 private:
  std::intptr_t file_;
  std::uint64_t position_ = 0;
};

}  // namespace os
