#include "visa/TraceFile.h"

#include <zk_version.h>

#include <map>

#include "platform/os/Process.h"
#include "visa/MachineLock.h"
#include "visa/TraceLine.h"

namespace zevisa {

namespace fs = std::filesystem;

std::shared_ptr<TraceFile> TraceFile::Of(const fs::path& path) {
  static std::mutex mutex;
  static std::map<fs::path, std::weak_ptr<TraceFile>> files;
  const fs::path place = fs::absolute(path).lexically_normal();
  const std::lock_guard guard(mutex);
  std::erase_if(files, [](const auto& entry) { return entry.second.expired(); });
  std::shared_ptr<TraceFile> file = files[place].lock();
  if (!file) {
    file = std::make_shared<TraceFile>(place);
    files[place] = file;
  }
  file->Renew();
  return file;
}

void TraceFile::Renew() {
  const std::lock_guard guard(mutex_);
  if (file_.IsOpen() && file_.IsAt(path_)) return;
  if (!file_.Open(path_)) return;
  Append(NoteLine("trace by zevisa64 " ZK_VERSION_TEXT " in " + os::ProgramName()));
}

void TraceFile::Write(const std::string& line) noexcept try {
  const std::lock_guard guard(mutex_);
  if (!file_.IsOpen()) return;
  if (lost_ != 0 && Append(NoteLine(std::to_string(lost_) + " lines could not be written"))) {
    lost_ = 0;
  }
  if (!Append(line)) ++lost_;
  if (file_.Size() >= limit_) Rotate();
} catch (...) {
  // No memory for the line: it is lost.
}

/// A line that came in part is ended before the next one.
bool TraceFile::Append(const std::string& line) {
  const std::string whole = torn_ ? "\n" + line : line;
  const std::size_t written = file_.Append(whole);
  if (written != 0) torn_ = written != whole.size();
  return written == whole.size();
}

/// Makes the file the one before, unless another process has done so, and goes to the new one.
void TraceFile::Rotate() {
  if (file_.IsAt(path_) && !PutAside()) return;
  file_.Open(path_);
}

/// Looks at the name again under a lock of the machine, so that nobody renames the new file. A
/// process that meets the lock does not wait: it looks again at its next line.
bool TraceFile::PutAside() {
  MachineLock lock;
  if (!lock.TryAcquire("trace-" + file_.Identity())) return false;
  fs::path before = path_;
  before += ".1";
  if (!file_.IsAt(path_) || AppendFile::Replace(path_, before)) return true;
  Append(NoteLine("the trace ends: the file is full and cannot be renamed"));
  file_.Close();
  return false;
}

}  // namespace zevisa
