// Calls that are told in a trace.
#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <set>

#include "tests/platform/Content.h"
#include "tests/visa/SettingsFixture.h"

/// The trace of a whole process, in a folder of the test's own.
class VisaTrace : public VisaSettings {
 protected:
  /// The lines of a file; each must be a whole one.
  static std::vector<std::string> Lines(const std::filesystem::path& file) {
    static const std::regex whole(
        R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z \d+ \d+ (-|\d+) (vi\w+|note) (-|\d+/\d+) \d+ )"
        R"((-|VI_\w+|0x[0-9A-F]{8})( [a-z]+=("([^"\\]|\\["\\]|\\x[0-9a-f]{2})*"|[\w.-]*))*)");
    const std::string text = ContentOf(file);
    EXPECT_TRUE(text.empty() || text.back() == '\n') << "the last line is not whole";
    std::vector<std::string> lines;
    std::istringstream pieces(text);
    for (std::string line; std::getline(pieces, line);) {
      EXPECT_TRUE(std::regex_match(line, whole)) << line;
      lines.push_back(line);
    }
    return lines;
  }
  /// Without what differs each time: from the session on, without the duration.
  static std::string Core(const std::string& line) {
    static const std::regex parts(R"(\S+ \d+ \d+ (\S+ \S+ \S+) \d+ (.*))");
    return std::regex_replace(line, parts, "$1 $2");
  }
  static std::vector<std::string> Cores(const std::filesystem::path& file) {
    std::vector<std::string> cores;
    for (const std::string& line : Lines(file)) cores.push_back(Core(line));
    return cores;
  }
  /// What the two files say the library counted in the manager's user data, which tells lost and
  /// doubled lines.
  [[nodiscard]] std::vector<int> Numbers() const {
    static const std::regex counted(".* attribute=VI_ATTR_USER_DATA value=(\\d+)");
    std::vector<int> numbers;
    std::smatch found;
    for (const auto& file : {Before(), trace_file_}) {
      for (const std::string& line : Lines(file)) {
        if (std::regex_match(line, found, counted)) numbers.push_back(std::stoi(found[1]));
      }
    }
    return numbers;
  }
  /// How many numbers there are; none stands there twice.
  [[nodiscard]] std::size_t CountDifferent() const {
    const std::vector<int> numbers = Numbers();
    EXPECT_EQ(std::set<int>(numbers.begin(), numbers.end()).size(), numbers.size());
    return numbers.size();
  }
  void Count(int from, int to) {
    for (int i = from; i < to; ++i) {
      EXPECT_STATUS(visa.viSetAttribute(manager, VI_ATTR_USER_DATA, static_cast<ViAttrState>(i)),
                    VI_SUCCESS);
    }
  }
  std::filesystem::path Before() const { return trace_file_.string() + ".1"; }

  std::filesystem::path trace_file_ = folder_.path() / "visa.trace";
  EnvironmentVariable trace_variable_{"ZEVISA_TRACE", trace_file_};
};
