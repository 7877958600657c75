#include <unistd.h>

#include "platform/os/Console.h"

namespace os {

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) == 1; }

std::vector<std::string> Utf8Arguments(int argc, char** argv) { return {argv, argv + argc}; }

void UseUtf8Output() {}

void UseByteStreams() {}

}  // namespace os
