#include "tests/typelib/Surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

std::string ReadTextFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (!in || text.str().empty()) throw std::runtime_error("cannot read " + file);
  return text.str();
}

Lines ReadExpectedSurface() {
  std::istringstream text(ReadTextFile(ZK_EXPECTED_SURFACE));
  Lines lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

void ExpectSameSurface(const Lines& actual, const Lines& expected) {
  const auto [found, wanted] = std::ranges::mismatch(actual, expected);
  EXPECT_TRUE(found == actual.end() && wanted == expected.end())
      << "line " << wanted - expected.begin() + 1
      << "\nexpected: " << (wanted == expected.end() ? "nothing" : *wanted)
      << "\nfound:    " << (found == actual.end() ? "nothing" : *found);
}
