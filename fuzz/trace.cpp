// I/O traces, good, damaged and foreign, in pieces of any size.
#include "fuzz/Fuzz.h"
#include "zk4n/iotrace/LineReader.h"
#include "zk4n/iotrace/Report.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::uint8_t first = input.TakeByte();
  const std::size_t piece = std::size_t{1} + (first >> 1) * std::size_t{64};
  const iotrace::Output output = [](const std::string& text) {
    fuzz::Require(text.ends_with('\n'));
  };
  iotrace::TextReport text("trace", output);
  iotrace::JsonReport objects("trace", output);
  iotrace::Report& report = (first & 1) != 0 ? static_cast<iotrace::Report&>(objects) : text;
  iotrace::TraceReader trace(report);
  iotrace::LineReader lines(trace);
  while (!input.rest().empty()) {
    const auto bytes = input.Take(piece);
    lines.Feed({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  lines.EndFile();
  trace.End();
  report.End();
  return 0;
}
