// Resource names, as the driver and as the VISA library read them.
#include "K4NHardWare/ResourceName.h"
#include "fuzz/Fuzz.h"
#include "visa/ResourceName.h"

using namespace k4n;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::Input(data, size).text();
  ResourceName name;
  std::string host;
  std::uint32_t port = 0;
  ParseResourceName(text, name);
  SplitHostPort(text, host, port);
  if (const auto parsed = zevisa::ParseResourceName(text)) {
    const std::string canonical = parsed->Canonical();
    fuzz::Require(canonical.size() < 256);
    const auto again = zevisa::ParseResourceName(canonical);
    fuzz::Require(again && again->Canonical() == canonical);
  }
  return 0;
}
