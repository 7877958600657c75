// Registration scripts.
#include "fuzz/Fuzz.h"
#include "server/RegistryScript.h"

using namespace server;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Replacements replacements = {{"MODULE", {'m', '.', 'd', 'l', 'l'}}};
  try {
    ParseRegistryScript(fuzz::Input(data, size).text(), replacements);
  } catch (const ScriptError& error) {
    fuzz::Require(*error.what() != '\0');
  }
  return 0;
}
