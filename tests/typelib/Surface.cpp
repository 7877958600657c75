#include "tests/typelib/Surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

/// Every indented line with its type before it, sorted.
Lines WithTypes(const Lines& lines) {
  Lines result;
  std::string type;
  for (const auto& line : lines) {
    if (line.starts_with("  ")) {
      result.emplace_back(type).append(":").append(line);
    } else {
      type = line.substr(0, line.find(' ', line.find(' ') + 1));
      result.push_back(line);
    }
  }
  std::ranges::sort(result);
  return result;
}

/// The lines of `some` that `others` lacks, both sorted.
std::string Missing(const Lines& some, const Lines& others, const char* mark) {
  Lines missing;
  std::ranges::set_difference(some, others, std::back_inserter(missing));
  std::string text;
  for (const auto& line : missing) {
    text += mark + line + "\n";
  }
  return text;
}

}  // namespace

std::string ReadTextFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (!in || text.str().empty()) {
    throw std::runtime_error("cannot read " + file);
  }
  return text.str();
}

Lines ReadExpectedSurface() {
  std::istringstream text(ReadTextFile(ZK_EXPECTED_SURFACE));
  Lines lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

void ExpectSameSurface(const Lines& actual, const Lines& expected) {
  const Lines all_actual = WithTypes(actual);
  const Lines all_expected = WithTypes(expected);
  const std::string differences = Missing(all_expected, all_actual, "expected: ") +
                                  Missing(all_actual, all_expected, "found:    ");
  EXPECT_TRUE(differences.empty()) << differences;
  if (differences.empty()) {
    const auto [found, wanted] = std::ranges::mismatch(actual, expected);
    EXPECT_TRUE(found == actual.end() && wanted == expected.end())
        << "another order from line " << wanted - expected.begin() + 1 << ": "
        << (found == actual.end() ? "nothing" : *found);
  }
}
