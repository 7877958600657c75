// The log file, byte for byte.
#include "K4NHardWare/DriverLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstdlib>
#include <ctime>
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
    R"(\r\n\r\n------------------- Log started \d\d/\d\d/\d\d \[\d\d:\d\d:\d\d\] )"
    "----------------------------";
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

void SetZone(const char* zone) {
#ifdef _WIN32
  _putenv_s("TZ", zone);
  _tzset();
#else
  setenv("TZ", zone, 1);
#endif
}

TEST_F(DriverLogTest, StampsAreLocalTimeAndDate) {
  constexpr std::time_t kHalfADay = 43200;
  std::filesystem::create_directories(folder_);
  const auto now = [] { return std::time(nullptr); };
  // Half a day to the side on which the date is another one.
  const bool is_morning = now() % 86400 < kHalfADay;
  SetZone(is_morning ? "TST12" : "TST-12");
  const std::time_t shift = is_morning ? -kHalfADay : kHalfADay;
  const auto entry = [shift](std::time_t time) {
    const std::time_t shifted = time + shift;
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "\r\n%m/%d/%y [%H:%M:%S] x\r\n[%H:%M:%S -  ms after] x",
                  std::gmtime(&shifted));
    return std::string(text.data());
  };
  std::time_t begin = 0;
  do {  // within one second
    begin = now();
    {
      DriverLog log("test.log");
      log.DatedLine("x");
      log.TimedLine("x");
    }
  } while (now() != begin);
  SetZone("UTC0");
  EXPECT_THAT(Content(), testing::HasSubstr(entry(begin)));
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
