// The log file, byte for byte.
#include "K4NHardWare/DriverLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "platform/os/Files.h"
#include "platform/os/Notice.h"

namespace {

/// The folder of the logs in a documents folder of the test's own.
class DriverLogTest : public testing::Test {
 protected:
  DriverLogTest() : folder_(os::DocumentsFolder() / "zentrel lumigraf") {
    std::filesystem::remove_all(folder_);
    os::SetNoticeHook([this](const std::string& text, const std::string& caption) {
      notices_.push_back(caption + ": " + text);
    });
  }
  ~DriverLogTest() override {
    os::SetNoticeHook({});
    std::filesystem::remove_all(folder_);
  }

  [[nodiscard]] std::string Content() const {
    std::ifstream file(folder_ / "test.log", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::filesystem::path folder_;
  std::vector<std::string> notices_;
};

constexpr const char* kOpening =
    R"(\r\n\r\n------------------- Log started \d\d/\d\d/\d\d \[\d\d:\d\d:\d\d\] ----------------------------)";
constexpr const char* kClosing =
    R"(\r\n---------------------------- Log closed ----------------------------)";

TEST_F(DriverLogTest, EntriesAreFlushedAtOnceAndNullIsNothing) {
  std::filesystem::create_directories(folder_);
  std::string pattern = kOpening;
  {
    DriverLog log("test.log");
    EXPECT_TRUE(std::regex_match(Content(), std::regex(pattern)));
    log.TimedLine("first");
    log.TimedLine(nullptr);
    pattern += R"(\r\n\[\d\d:\d\d:\d\d -  ms after\] first)";
    EXPECT_TRUE(std::regex_match(Content(), std::regex(pattern)));
    log.DatedLine("second");
    log.DatedLine(nullptr);
    log.DatedLine("");
    pattern += R"(\r\n\d\d/\d\d/\d\d \[\d\d:\d\d:\d\d\] second)";
    pattern += R"(\r\n\d\d/\d\d/\d\d \[\d\d:\d\d:\d\d\] )";
  }
  EXPECT_TRUE(std::regex_match(Content(), std::regex(pattern + kClosing))) << Content();
  { DriverLog again("test.log"); }
  EXPECT_TRUE(std::regex_match(Content(), std::regex(std::string(kOpening) + kClosing)));
  EXPECT_TRUE(notices_.empty());
#ifdef _WIN32
  EXPECT_THAT(std::setlocale(LC_ALL, nullptr), testing::StartsWith("English"));
#endif
}

TEST_F(DriverLogTest, MissingFolderGivesTheWarningAndNoFile) {
  {
    DriverLog log("test.log");
    log.TimedLine("lost");
  }
  EXPECT_THAT(notices_, testing::ElementsAre("ZeVISA Error: Error creating logfile!"));
  EXPECT_FALSE(std::filesystem::exists(folder_));
}

}  // namespace
