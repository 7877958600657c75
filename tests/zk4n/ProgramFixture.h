// zk4n as a process, in a folder of the test's own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/platform/TemporaryFolder.h"
#include "tests/zk4n/Program.h"

using Arguments = std::vector<std::string>;

/// Words with blanks between them.
inline Arguments Words(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

class ProgramTest : public testing::Test {
 protected:
  ProgramTest() {
    for (const char* const name : {"files", "output", "program"}) {
      std::filesystem::create_directory(folder_ / name);
    }
  }

  /// Arguments with "@" for the folder of the files, "nobody" for a resource without an instrument.
  [[nodiscard]] Arguments Resolved(Arguments arguments) const {
    for (std::string& argument : arguments) {
      if (argument == "nobody") argument = "TCPIP0::127.0.0.1::9::SOCKET";  // the discard port
      const auto at = argument.find('@');
      if (at != std::string::npos) argument.replace(at, 1, File(""));
    }
    return arguments;
  }

  /// A text of the program with "@" for the folder of the files again.
  [[nodiscard]] std::string WithoutFolder(std::string text) const {
    for (std::size_t at; (at = text.find(File(""))) != std::string::npos;) {
      text.replace(at, File("").size(), "@");
    }
    std::erase(text, '\r');
    return text;
  }

  struct Result {
    std::optional<int> status;
    std::string output;
    std::string errors;
  };
  [[nodiscard]] Result Run(const Arguments& arguments,
                           const std::filesystem::path& file = ZK_CLIENT) const {
    Program program(file, Resolved(arguments), folder_ / "output");
    const std::optional<int> status = program.Wait();
    return {status, program.Output(), program.Errors()};
  }

  [[nodiscard]] std::string File(const std::string& name) const {
    return (folder_ / "files" / name).generic_string();
  }
  /// Names of the files.
  [[nodiscard]] std::vector<std::string> Files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "files")) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  /// Runs the commands of a section of failures.txt, with more arguments, and expects this exit
  /// status, the section's line on standard error, no other output and no other files.
  void ExpectFailures(const std::string& section, int status, const std::string& more = {}) const {
    std::ifstream rows(ZK_FAILURES);
    std::string row;
    while (std::getline(rows, row) && row != "== " + section) {
    }
    EXPECT_TRUE(rows) << "there is no section " << section;
    const auto files = Files();
    while (std::getline(rows, row) && !row.empty()) {
      const std::string arguments = row.substr(0, row.find(" => "));
      const Result result = Run(Words(arguments + more));
      std::string told = arguments + " => " + WithoutFolder(result.errors);
      if (row.ends_with("...")) told = told.substr(0, row.size() - 3) + "...\n";
      EXPECT_EQ(told, row + "\n");
      EXPECT_EQ(result.status, status) << row;
      EXPECT_EQ(result.output, "") << row;
      EXPECT_EQ(Files(), files) << row;
    }
  }

  const TemporaryFolder temporary_;
  const std::filesystem::path& folder_ = temporary_.path();
};
