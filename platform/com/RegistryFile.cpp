#include "platform/com/RegistryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>

namespace {

namespace fs = std::filesystem;

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// Empty when the user has no home folder.
fs::path RegistryPath() {
  if (fs::path path = Environment("ZENTREL_REGISTRY"); !path.empty()) return path;
  fs::path data = Environment("XDG_DATA_HOME");
  if (!data.is_absolute()) {
    const fs::path home = Environment("HOME");
    if (home.empty()) return {};
    data = home / ".local/share";
  }
  return data / "zentrel" / "registry";
}

fs::path Beside(const fs::path& path, const char* suffix) { return path.native() + suffix; }

class FileDescriptor {
 public:
  FileDescriptor(const fs::path& path, int flags) : descriptor_(open(path.c_str(), flags, 0600)) {}
  ~FileDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  [[nodiscard]] int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

/// What differs between a file and the one that replaces it, or the same file written over.
struct FileState {
  FileState() = default;
  explicit FileState(const fs::path& path) : name(path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) return;
    device = found.st_dev;
    inode = found.st_ino;
    size = found.st_size;
    seconds = found.st_mtim.tv_sec;
    nanoseconds = found.st_mtim.tv_nsec;
  }
  bool operator==(const FileState&) const = default;
  /// False when another file could still follow within the clock's tick, and look the same.
  [[nodiscard]] bool IsSettled() const { return time(nullptr) - seconds > 1; }

  fs::path name;
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = -1;  // no such file
  time_t seconds = 0;
  long nanoseconds = 0;
};

bool LockExclusively(int descriptor) {
  int result = 0;
  do {
    result = flock(descriptor, LOCK_EX);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool WriteAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return fsync(descriptor) == 0;
}

/// A reader meets the old text or the new one, also when the machine stops in between.
LSTATUS Replace(const fs::path& path, std::string_view text) {
  const fs::path fresh = Beside(path, ".new");
  {
    const FileDescriptor file(fresh, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
    if (!WriteAll(file.Get(), text)) return ERROR_WRITE_FAULT;
  }
  std::error_code error;
  fs::rename(fresh, path, error);
  return error ? ERROR_WRITE_FAULT : ERROR_SUCCESS;
}

LSTATUS Read(const fs::path& path, RegistryKey& root) {
  std::error_code error;
  if (path.empty() || (!fs::exists(path, error) && !error)) return ERROR_SUCCESS;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  // An empty file puts nothing into the stream, which counts as a failure there.
  if (!file || (!(text << file.rdbuf()) && file.bad())) return ERROR_ACCESS_DENIED;
  auto parsed = ParseRegistry(text.view());
  if (!parsed) return ERROR_BADDB;
  root = std::move(*parsed);
  return ERROR_SUCCESS;
}

}  // namespace

LSTATUS ReadRegistry(std::shared_ptr<const RegistryKey>& root) {
  static std::mutex mutex;
  static FileState newest_state;
  static std::shared_ptr<const RegistryKey> newest;
  const fs::path path = RegistryPath();
  const FileState state(path);
  {
    const std::lock_guard lock(mutex);
    if (newest != nullptr && state == newest_state) {
      root = newest;
      return ERROR_SUCCESS;
    }
  }
  auto fresh = std::make_shared<RegistryKey>();
  if (const LSTATUS read = Read(path, *fresh); read != ERROR_SUCCESS) return read;
  root = fresh;
  if (!state.IsSettled()) return ERROR_SUCCESS;
  const std::lock_guard lock(mutex);
  newest = std::move(fresh);
  newest_state = state;
  return ERROR_SUCCESS;
}

LSTATUS ChangeRegistry(const std::function<LSTATUS(RegistryKey& root)>& change) {
  const fs::path path = RegistryPath();
  if (path.empty()) return ERROR_WRITE_FAULT;
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  // The lock is a file of its own, since the registry's is a new one after every change.
  const FileDescriptor lock(Beside(path, ".lock"), O_RDWR | O_CREAT | O_CLOEXEC);
  if (lock.Get() < 0 || !LockExclusively(lock.Get())) return ERROR_WRITE_FAULT;
  RegistryKey root;
  if (const LSTATUS read = Read(path, root); read != ERROR_SUCCESS) return read;
  const std::string before = FormatRegistry(root);
  if (const LSTATUS changed = change(root); changed != ERROR_SUCCESS) return changed;
  const std::string after = FormatRegistry(root);
  return after == before ? ERROR_SUCCESS : Replace(path, after);
}
