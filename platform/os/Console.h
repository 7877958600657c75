// A command-line program's contact with its terminal: texts are UTF-8 on every system.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace os {

/// Whether a stream goes to a terminal that a person looks at.
bool IsTerminal(std::FILE* stream);

/// The program's arguments, its name first, as UTF-8.
std::vector<std::string> Utf8Arguments(int argc, char** argv);

/// Makes the terminal show UTF-8 from now on.
void UseUtf8Output();

/// Makes standard input and output pass bytes as they are, on every system: no line end is
/// translated, and no byte ends the input.
void UseByteStreams();

}  // namespace os
