#include "visa/AppendFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace zevisa {
namespace {

/// The system's description of a file; all zero when it tells nothing.
struct FileStatus : stat {
  explicit FileStatus(std::intptr_t fd) : stat{} { fstat(static_cast<int>(fd), this); }
  explicit FileStatus(const std::filesystem::path& path) : stat{} { ::stat(path.c_str(), this); }
};

}  // namespace

bool AppendFile::Open(const std::filesystem::path& path) {
  Close();
  // A FIFO without a reader would hold up its writer, and one that loses its reader end it.
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  constexpr mode_t kForAll = 0666;  // the user's mask takes away what shall not be
  handle_ = open(path.c_str(), kFlags, kForAll);
  const mode_t mode = FileStatus(handle_).st_mode;
  if (!S_ISREG(mode) && !S_ISCHR(mode)) Close();
  return IsOpen();
}

void AppendFile::Close() {
  if (IsOpen()) close(static_cast<int>(handle_));
  handle_ = kNone;
}

std::size_t AppendFile::Append(std::string_view bytes) const {
  for (;;) {
    const ssize_t written = write(static_cast<int>(handle_), bytes.data(), bytes.size());
    if (written >= 0) return static_cast<std::size_t>(written);
    if (errno != EINTR) return 0;
  }
}

std::uint64_t AppendFile::Size() const {
  // The place does not matter to what is appended, and telling it costs half of what a status does.
  const off_t end = lseek(static_cast<int>(handle_), 0, SEEK_END);
  return end < 0 ? 0 : static_cast<std::uint64_t>(end);
}

bool AppendFile::IsAt(const std::filesystem::path& path) const {
  const FileStatus own(handle_);
  const FileStatus there(path);
  return own.st_dev == there.st_dev && own.st_ino == there.st_ino;
}

std::string AppendFile::Identity() const {
  const FileStatus own(handle_);
  return std::to_string(own.st_dev) + "-" + std::to_string(own.st_ino);
}

bool AppendFile::Replace(const std::filesystem::path& from, const std::filesystem::path& to) {
  return rename(from.c_str(), to.c_str()) == 0;
}
}  // namespace zevisa
