// The file of an I/O trace.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

#include "visa/AppendFile.h"
#include "visa/Settings.h"

namespace zevisa {

/// Takes whole lines from all threads and processes. A file that has reached its size becomes
/// FILE.1, in whose place there may be one before it, and a new one begins. Nothing that goes wrong
/// is heard of outside: lines that a full disk does not take are lost and counted, a path that
/// cannot be written makes no trace.
class TraceFile {
 public:
  /// The trace in this file, one for all sessions of the process. One that was removed, or that
  /// could not be written, is tried again.
  static std::shared_ptr<TraceFile> Of(const std::filesystem::path& path);
  /// Whether there is any, which is all that calls pay while there is none.
  static bool IsAny() { return count_.load(std::memory_order_relaxed) != 0; }

  explicit TraceFile(std::filesystem::path path) : path_(std::move(path)) { ++count_; }
  ~TraceFile() { --count_; }
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  /// The size, in bytes, at which a new file begins.
  void SetLimit(std::uint64_t limit) { limit_ = limit; }

  /// The line with its end. Never throws.
  void Write(const std::string& line) noexcept;

 private:
  static inline std::atomic<int> count_ = 0;

  void Renew();
  bool Append(const std::string& line);
  void Rotate();
  bool PutAside();

  const std::filesystem::path path_;
  std::atomic<std::uint64_t> limit_ = std::uint64_t{Settings{}.trace_size} * 1024;
  std::mutex mutex_;
  AppendFile file_;
  bool torn_ = false;       ///< the last line came in part
  std::uint64_t lost_ = 0;  ///< lines
};

}  // namespace zevisa
