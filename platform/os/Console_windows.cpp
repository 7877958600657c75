#include <windows.h>
// After windows.h.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include "platform/os/Console.h"
#include "platform/os/Text.h"

namespace os {

bool IsTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
  int count = 0;
  LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return {argv, argv + argc};
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(ToNarrow(WideView(wide[i]), kUtf8CodePage));
  LocalFree(wide);
  return arguments;
}

void UseUtf8Output() { SetConsoleOutputCP(CP_UTF8); }

void UseByteStreams() {
  SetConsoleCP(CP_UTF8);
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

}  // namespace os
