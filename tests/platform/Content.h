// The content of files.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// All bytes of a file; empty when there is none.
inline std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}
