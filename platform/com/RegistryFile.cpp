#include "platform/com/RegistryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/os/FileDescriptor_posix.h"

namespace {

namespace fs = std::filesystem;

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// One of the files that hold the registry: all of it, or what is below one of its roots.
struct Part {
  fs::path file;
  std::u16string_view root;  // empty: all of them
  mode_t mode;
};

/// Empty when the user has no home folder.
fs::path UsersFile() {
  fs::path data = Environment("XDG_DATA_HOME");
  if (!data.is_absolute()) {
    const fs::path home = Environment("HOME");
    if (home.empty()) return {};
    data = home / ".local/share";
  }
  return data / "zentrel" / "registry";
}

/// Who asks for the registry in one file has it to himself; else the machine's part is for all
/// users.
std::vector<Part> Parts() {
  constexpr mode_t kForOwner = 0600;
  constexpr mode_t kForAll = 0644;
  if (const std::string file = Environment("ZENTREL_REGISTRY"); !file.empty()) {
    return {{file, {}, kForOwner}};
  }
  const std::string machine = Environment("ZENTREL_MACHINE_REGISTRY");
  return {{UsersFile(), kUserRoot, kForOwner},
          {machine.empty() ? "/var/lib/zentrel/registry" : machine, kMachineRoot, kForAll}};
}

/// Whether a change at the path can be one of the part; the merged view has no root of its own.
bool Concerns(std::u16string_view path, const Part& part) {
  return part.root.empty() || path.empty() ||
         EqualNames(path.substr(0, path.find(u'\\')), part.root);
}

fs::path Beside(const fs::path& path, const char* suffix) { return path.native() + suffix; }

os::FileDescriptor Open(const fs::path& path, int flags) {
  return os::FileDescriptor(open(path.c_str(), flags | O_CLOEXEC, 0600));
}

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

/// What a system call that failed says of a file.
LSTATUS StatusOf(int error) {
  return error == EACCES || error == EPERM || error == EROFS ? ERROR_ACCESS_DENIED
                                                             : ERROR_WRITE_FAULT;
}

/// A reader meets the old text or the new one, also when the machine stops in between.
LSTATUS Replace(const Part& part, std::string_view text) {
  const fs::path fresh = Beside(part.file, ".new");
  {
    const os::FileDescriptor file = Open(fresh, O_WRONLY | O_CREAT | O_TRUNC);
    if (file.Get() < 0) return StatusOf(errno);
    if (fchmod(file.Get(), part.mode) != 0 || !WriteAll(file.Get(), text)) return ERROR_WRITE_FAULT;
  }
  std::error_code error;
  fs::rename(fresh, part.file, error);
  return error ? StatusOf(error.value()) : ERROR_SUCCESS;
}

/// Adds what a part holds to the registry.
LSTATUS Read(const Part& part, RegistryKey& root) {
  std::error_code error;
  if (part.file.empty() || (!fs::exists(part.file, error) && !error)) return ERROR_SUCCESS;
  std::ifstream file(part.file, std::ios::binary);
  std::ostringstream text;
  // An empty file puts nothing into the stream, which counts as a failure there.
  if (!file || (!(text << file.rdbuf()) && file.bad())) return ERROR_ACCESS_DENIED;
  auto parsed = ParseRegistry(text.view());
  if (!parsed) return ERROR_BADDB;
  if (RegistryKey* const found = parsed->Find(part.root))
    root.Create(part.root) = std::move(*found);
  return ERROR_SUCCESS;
}

LSTATUS Read(const std::vector<Part>& parts, RegistryKey& root) {
  for (const Part& part : parts) {
    if (const LSTATUS read = Read(part, root); read != ERROR_SUCCESS) return read;
  }
  return ERROR_SUCCESS;
}

/// What the part's file holds of the registry.
std::string TextOf(const Part& part, const RegistryKey& root) {
  if (part.root.empty()) return FormatRegistry(root);
  RegistryKey own;
  if (const RegistryKey* const found = root.Find(part.root)) own.Create(part.root) = *found;
  return FormatRegistry(own);
}

/// The right to change a part, until it is destroyed.
class PartLock {
 public:
  explicit PartLock(const Part& part) : result_(MakeFolder(part.file)), file_(Lock(part.file)) {}

  /// ERROR_SUCCESS when it is held.
  [[nodiscard]] LSTATUS Result() const { return result_; }

 private:
  static LSTATUS MakeFolder(const fs::path& file) {
    std::error_code error;
    // A device would be lost to the file that takes its name.
    const fs::file_status there = fs::status(file, error);
    if (file.empty() || (fs::exists(there) && !fs::is_regular_file(there))) {
      return ERROR_WRITE_FAULT;
    }
    fs::create_directories(file.parent_path(), error);
    return error ? StatusOf(error.value()) : ERROR_SUCCESS;
  }
  /// The lock is a file of its own, since the registry's is a new one after every change.
  os::FileDescriptor Lock(const fs::path& file) {
    if (result_ != ERROR_SUCCESS) return {};
    os::FileDescriptor lock = Open(Beside(file, ".lock"), O_RDWR | O_CREAT);
    if (lock.Get() < 0 || !LockExclusively(lock.Get())) result_ = StatusOf(errno);
    return lock;
  }

  LSTATUS result_;
  os::FileDescriptor file_;
};

}  // namespace

LSTATUS ReadRegistry(std::shared_ptr<const RegistryKey>& root) {
  static std::mutex mutex;
  static std::vector<FileState> newest_states;
  static std::shared_ptr<const RegistryKey> newest;
  const std::vector<Part> parts = Parts();
  std::vector<FileState> states;
  states.reserve(parts.size());
  for (const Part& part : parts) states.emplace_back(part.file);
  {
    const std::lock_guard lock(mutex);
    if (newest != nullptr && states == newest_states) {
      root = newest;
      return ERROR_SUCCESS;
    }
  }
  auto fresh = std::make_shared<RegistryKey>();
  if (const LSTATUS read = Read(parts, *fresh); read != ERROR_SUCCESS) return read;
  root = fresh;
  if (!std::all_of(states.begin(), states.end(),
                   [](const FileState& state) { return state.IsSettled(); })) {
    return ERROR_SUCCESS;
  }
  const std::lock_guard lock(mutex);
  newest = std::move(fresh);
  newest_states = std::move(states);
  return ERROR_SUCCESS;
}

LSTATUS ChangeRegistry(std::u16string_view path,
                       const std::function<LSTATUS(RegistryKey& root)>& change) {
  // Only the parts that may change are locked: others may be nobody's to write, or not to be made.
  std::vector<Part> parts = Parts();
  std::erase_if(parts, [path](const Part& part) { return !Concerns(path, part); });
  std::vector<PartLock> locks(parts.begin(), parts.end());
  RegistryKey root;
  if (const LSTATUS read = Read(parts, root); read != ERROR_SUCCESS) return read;
  std::vector<std::string> before;
  before.reserve(parts.size());
  for (const Part& part : parts) before.push_back(TextOf(part, root));
  if (const LSTATUS changed = change(root); changed != ERROR_SUCCESS) return changed;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::string after = TextOf(parts[i], root);
    if (after == before[i]) continue;
    if (locks[i].Result() != ERROR_SUCCESS) return locks[i].Result();
    if (const LSTATUS replaced = Replace(parts[i], after); replaced != ERROR_SUCCESS)
      return replaced;
  }
  return ERROR_SUCCESS;
}
