#include "tests/zk4n/Program.h"

#include <fstream>
#include <sstream>

std::string Program::TextOf(const std::filesystem::path& file, std::size_t from) {
  std::ifstream stream(file, std::ios::binary);
  stream.seekg(static_cast<std::streamoff>(from));
  std::stringstream rest;
  rest << stream.rdbuf();
  std::string text = rest.str();
  std::erase(text, '\r');  // Windows ends its lines with one more character
  return text;
}
