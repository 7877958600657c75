// The VISA library's settings file: whatever it says, a session gets settings within their ranges.
#include "visa/Settings.h"

#include "fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::Input(data, size).text();
  const auto in = [](std::uint32_t value, std::uint32_t minimum, std::uint32_t maximum) {
    return value >= minimum && value <= maximum;
  };
  for (const char* resource : {"TCPIP0::192.0.2.7::8888::SOCKET", ""}) {
    const zevisa::FoundSettings found = zevisa::ReadSettings(text, resource);
    const zevisa::Settings& values = found.values;
    fuzz::Require(in(values.keep_alive_idle, 1, 32767) &&
                  in(values.keep_alive_interval, 1, 32767) && in(values.keep_alive_probes, 1, 127));
    for (const std::uint32_t ceiling : {values.read_ceiling, values.connect_ceiling}) {
      fuzz::Require(ceiling == VI_TMO_INFINITE || in(ceiling, 20, 3600000));
    }
    fuzz::Require(in(values.trace_data, 0, 1 << 20) && in(values.trace_size, 64, 1 << 22));
    fuzz::Require(found.section.size() < VI_FIND_BUFLEN && found.problems.size() <= 51);
    for (const std::string& problem : found.problems) {
      fuzz::Require(problem.size() < VI_FIND_BUFLEN);
      for (const char c : problem) fuzz::Require(static_cast<unsigned char>(c) >= ' ');
    }
    fuzz::Require(*resource != '\0' || found.section.find_first_not_of("*[]") == std::string::npos);
  }
  return 0;
}
