// Lines of the console, up to the arguments that a member would be called with.
#include <new>

#include "fuzz/Fuzz.h"
#include "zk4n/shell/Command.h"
#include "zk4n/shell/Convert.h"

namespace {

void ConvertFor(const shell::Element& element) {
  using members::Kind;
  for (const members::Interface& group : members::Interfaces()) {
    for (const Kind kind : {Kind::kGet, Kind::kPut, Kind::kMethod}) {
      const members::Member* const member = group.Find(element.name, kind);
      if (member == nullptr) continue;
      try {
        const auto arguments = shell::ConvertAll(*member, element.arguments);
        fuzz::Require(arguments.size() == member->parameters.size());
      } catch (const shell::Fault&) {
      } catch (const std::bad_alloc&) {
      }
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line = fuzz::Input(data, size).text();
  if (const auto unfinished = shell::ParseUnfinished(line)) {
    fuzz::Require(line.ends_with(unfinished->name));
  }
  try {
    const shell::Command command = shell::ParseCommand(line);
    for (const shell::Element& element : command.path) ConvertFor(element);
  } catch (const shell::Fault& fault) {
    fuzz::Require(std::string_view(fault.what()).size() < 256);
  }
  return 0;
}
