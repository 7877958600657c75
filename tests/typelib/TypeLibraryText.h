// A type library as lines of text, as a client reads it through the system's interfaces.
#pragma once

#include <oaidl.h>

#include <string>
#include <vector>

/// The library's attributes, then its enumerations, interfaces and classes with their members;
/// UTF-8, help strings decoded from `help_code_page`. Throws std::runtime_error when the library
/// cannot be read.
std::vector<std::string> DescribeTypeLibrary(ITypeLib& library, unsigned help_code_page);
