// zk4n as a process, in a folder of the test's own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <optional>
#include <span>
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
    return (folder_ / "files" / name).string();
  }
  /// Names of the files.
  [[nodiscard]] std::vector<std::string> Files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "files")) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  struct Failure {
    const char* arguments;
    const char* error;  ///< what the one line on standard error tells
  };
  /// Runs each row's command and expects this exit status, one line on standard error, no other
  /// output and no other files.
  void ExpectFailures(std::span<const Failure> rows, int status,
                      const std::string& more = {}) const {
    const auto files = Files();
    for (const Failure& row : rows) {
      SCOPED_TRACE(row.arguments);
      const Result result = Run(Words(row.arguments + more));
      EXPECT_EQ(result.status, status);
      EXPECT_EQ(result.output, "");
      EXPECT_THAT(result.errors, testing::StartsWith("zk4n: "));
      EXPECT_THAT(result.errors, testing::HasSubstr(row.error));
      EXPECT_EQ(result.errors.find('\n'), result.errors.size() - 1);
      EXPECT_EQ(Files(), files);
    }
  }

  const TemporaryFolder temporary_;
  const std::filesystem::path& folder_ = temporary_.path();
};
