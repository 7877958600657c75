// zk4n trace: an I/O trace of the VISA library in words.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

#include "platform/os/GrowingFile.h"
#include "platform/os/Sync.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/Interrupt.h"
#include "zk4n/iotrace/LineReader.h"
#include "zk4n/iotrace/Report.h"

namespace zk4n {
namespace {

struct IoTraceOptions {
  std::string file;
  bool follow = false;
  bool json = false;
};

std::unique_ptr<iotrace::Report> ReportFor(const IoTraceOptions& options) {
  const auto print = [](const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
  };
  if (options.json) return std::make_unique<iotrace::JsonReport>(options.file, print);
  return std::make_unique<iotrace::TextReport>(options.file, print);
}

/// Reads a trace up to its end, or further as it grows.
class IoTraceCommand {
 public:
  explicit IoTraceCommand(const IoTraceOptions& options)
      : options_(options),
        path_(PathArgument(options.file)),
        file_(std::make_unique<os::GrowingFile>(path_)),
        report_(ReportFor(options)),
        trace_(*report_),
        lines_(trace_) {
    if (!file_->IsOpen()) throw UsageError("cannot read " + options.file);
  }

  int Run() {
    const InterruptGuard interrupt;
    ReadToEnd();
    while (options_.follow && !InterruptGuard::Requested()) {
      os::Sleep(kPoll);
      ReadToEnd();
      if (!file_->IsStillAt(path_)) TakeNewFile();
    }
    lines_.EndFile();
    trace_.End();
    report_->End();
    if (trace_.GoodLines() == 0 && !options_.follow) {
      throw std::runtime_error(options_.file + " is no I/O trace");
    }
    return exit_status::kOk;
  }

 private:
  static constexpr std::chrono::milliseconds kPoll{50};

  void ReadToEnd() {
    for (std::size_t count = 0; (count = file_->Read(buffer_)) != 0;) {
      lines_.Feed({buffer_.data(), count});
      if (InterruptGuard::Requested()) break;
    }
    std::fflush(stdout);
  }

  /// The writer renames a full file and begins a new one; lines may still have gone into the old
  /// one since it was read.
  void TakeNewFile() {
    auto next = std::make_unique<os::GrowingFile>(path_);
    if (!next->IsOpen()) return;  // not there yet
    ReadToEnd();
    lines_.EndFile();
    file_ = std::move(next);
    trace_.BeginFile();
    report_->OnReplaced();
    ReadToEnd();
  }

  const IoTraceOptions& options_;
  std::filesystem::path path_;
  std::unique_ptr<os::GrowingFile> file_;
  std::unique_ptr<iotrace::Report> report_;
  iotrace::TraceReader trace_;
  iotrace::LineReader lines_;
  std::vector<char> buffer_ = std::vector<char>(65536);
};

}  // namespace

void AddTraceCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<IoTraceOptions>();
  CLI::App* command = app.add_subcommand("trace", "An I/O trace of the VISA library in words");
  command->add_option("file", options->file, "The trace")->required();
  command->add_flag("--follow", options->follow, "Go on as the trace grows, until Ctrl-C");
  command->add_flag("--json", options->json, "One JSON object a line");
  command->callback([options, &status] { status = IoTraceCommand(*options).Run(); });
}

}  // namespace zk4n
