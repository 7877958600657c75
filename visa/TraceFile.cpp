#include "visa/TraceFile.h"

#include <zk_version.h>

#include <map>

#include "visa/MachineLock.h"
#include "visa/Process.h"
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
  Append(NoteLine("trace by zevisa64 " ZK_VERSION_TEXT " in " + ProgramName()));
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

/// The name is looked at under a lock of the machine, so that of two processes one renames the
/// file and the other finds the new one. A process that comes meanwhile writes this line and looks
/// again at its next.
void TraceFile::Rotate() {
  MachineLock lock;
  if (!lock.TryAcquire("trace-" + file_.Identity())) return;
  fs::path before = path_;
  before += ".1";
  if (file_.IsAt(path_) && !AppendFile::Replace(path_, before)) {
    Append(NoteLine("the trace ends: the file is full and cannot be renamed"));
    file_.Close();
    return;
  }
  file_.Open(path_);
}

}  // namespace zevisa
