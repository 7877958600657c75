// The published COM surface as text, one line a fact; a line without indentation begins a type.
#pragma once

#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/// The checked-in surface, expected.txt. Throws std::runtime_error when it cannot be read.
Lines ReadExpectedSurface();

/// The whole of a text file. Throws std::runtime_error when it cannot be read.
std::string ReadTextFile(const std::string& file);

/// Fails the current test with the first line that differs.
void ExpectSameSurface(const Lines& actual, const Lines& expected);
