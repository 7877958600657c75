#include "tests/zk4n/Program.h"

#include <fstream>
#include <iterator>

std::string Program::TextOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  std::erase(text, '\r');  // Windows ends its lines with one more character
  return text;
}
