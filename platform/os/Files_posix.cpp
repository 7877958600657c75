#include "platform/os/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "platform/os/FileDescriptor_posix.h"

namespace os {

WideString WideOf(const std::filesystem::path& path) {
  return ToWide(path.native(), kUtf8CodePage);
}

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::size_t largest) {
  // Opening does not wait for the other end of a FIFO; and the look is at what was opened, so that
  // nothing can take its place between the two.
  constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const FileDescriptor file(open(NativePath(path).c_str(), kFlags));
  struct stat found = {};
  if (fstat(file.Get(), &found) != 0 || !S_ISREG(found.st_mode)) return std::nullopt;
  std::string content;
  if (static_cast<std::uintmax_t>(found.st_size) > largest) return content;
  content.resize(static_cast<std::size_t>(found.st_size));
  std::size_t count = 0;
  while (count < content.size()) {
    const ssize_t got = read(file.Get(), content.data() + count, content.size() - count);
    if (got < 0 && errno != EINTR) return std::string();
    if (got == 0) break;  // it has become shorter
    if (got > 0) count += static_cast<std::size_t>(got);
  }
  content.resize(count);
  return content;
}

}  // namespace os
