#include "visa/Trace.h"

#include <mutex>
#include <utility>

#include "platform/os/Files.h"
#include "visa/Objects.h"

namespace zevisa {
namespace {

struct ProcessTrace {
  std::mutex mutex;
  std::shared_ptr<TraceFile> file;
};

ProcessTrace& TheProcessTrace() {
  static ProcessTrace trace;
  return trace;
}

}  // namespace

std::shared_ptr<TraceFile> TraceOfProcess() {
  ProcessTrace& trace = TheProcessTrace();
  const std::lock_guard guard(trace.mutex);
  return trace.file;
}

void FollowEnvironment() noexcept try {
  const std::filesystem::path path = os::PathFromEnvironment("ZEVISA_TRACE");
  std::shared_ptr<TraceFile> file;
  if (!path.empty()) file = TraceFile::Of(path);
  ProcessTrace& trace = TheProcessTrace();
  const std::lock_guard guard(trace.mutex);
  trace.file = std::move(file);
} catch (...) {
}

Trace TraceFor(const FoundSettings& settings) noexcept try {
  const Settings& values = settings.values;
  Trace trace{TraceOfProcess(), values.trace_data};
  if (!trace.file && !values.trace.empty()) {
    const os::WideString name = os::ToWide(values.trace, os::kUtf8CodePage);
    trace.file = TraceFile::Of(os::PathOf(name, os::kUtf8CodePage));
  }
  const bool has_limit = trace.file && !settings.section.empty();
  if (has_limit) trace.file->SetLimit(std::uint64_t{values.trace_size} * 1024);
  return trace;
} catch (...) {
  return {};
}

Trace TraceOf(ViObject object) noexcept try {
  const auto session = Objects::Instance().FindSession(object);
  Trace trace = session ? session->trace() : Trace{};
  if (auto of_process = TraceOfProcess()) trace.file = std::move(of_process);
  return trace;
} catch (...) {
  return {};
}

}  // namespace zevisa
