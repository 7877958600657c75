#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/os/Files.h"
#include "platform/os/GrowingFile.h"

namespace os {

GrowingFile::GrowingFile(const std::filesystem::path& path)
    : file_(open(NativePath(path).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
  struct stat found = {};
  if (IsOpen() && (fstat(static_cast<int>(file_), &found) != 0 || !S_ISREG(found.st_mode))) {
    close(static_cast<int>(file_));
    file_ = -1;
  }
}

GrowingFile::~GrowingFile() {
  if (IsOpen()) close(static_cast<int>(file_));
}

bool GrowingFile::IsOpen() const { return file_ >= 0; }

std::size_t GrowingFile::Read(std::span<char> buffer) {
  ssize_t got = 0;
  do {
    got = read(static_cast<int>(file_), buffer.data(), buffer.size());
  } while (got < 0 && errno == EINTR);
  const std::size_t count = got > 0 ? static_cast<std::size_t>(got) : 0;
  position_ += count;
  return count;
}

bool GrowingFile::IsStillAt(const std::filesystem::path& path) const {
  struct stat ours = {};
  struct stat theirs = {};
  return fstat(static_cast<int>(file_), &ours) == 0 &&
         stat(NativePath(path).c_str(), &theirs) == 0 && ours.st_dev == theirs.st_dev &&
         ours.st_ino == theirs.st_ino && static_cast<std::uint64_t>(ours.st_size) >= position_;
}

}  // namespace os
