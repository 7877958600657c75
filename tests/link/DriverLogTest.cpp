// The log file, byte for byte.
#include "K4NHardWare/DriverLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/os/Files.h"
#include "platform/os/Notice.h"
#include "tests/platform/Content.h"

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

  [[nodiscard]] std::string Content() const { return ContentOf(folder_ / "test.log"); }

  std::filesystem::path folder_;
  std::vector<std::string> notices_;
};

void SetZone(const char* zone) {
#ifdef _WIN32
  _putenv_s("TZ", zone);
  _tzset();
#else
  setenv("TZ", zone, 1);
#endif
}

constexpr const char* kOpening =
    "\r\n\r\n------------------- Log started %m/%d/%y [%H:%M:%S] ----------------------------";
constexpr const char* kEntries =
    "\r\n[%H:%M:%S -  ms after] first\r\n%m/%d/%y [%H:%M:%S] second\r\n%m/%d/%y [%H:%M:%S] ";
constexpr const char* kClosing =
    "\r\n---------------------------- Log closed ----------------------------";

TEST_F(DriverLogTest, EntriesAreFlushedAtOnceWithLocalTimeAndDateAndNullIsNothing) {
  constexpr std::time_t kHalfADay = 43200;
  std::filesystem::create_directories(folder_);
  const auto now = [] { return std::time(nullptr); };
  // Half a day to the side on which the date is another one.
  const bool is_morning = now() % 86400 < kHalfADay;
  SetZone(is_morning ? "TST12" : "TST-12");
  std::time_t begin = 0;
  std::vector<std::string> contents;
  do {  // within one second
    begin = now();
    contents.clear();
    {
      DriverLog log("test.log");
      contents.push_back(Content());
      log.TimedLine("first");
      log.TimedLine(nullptr);
      log.DatedLine("second");
      log.DatedLine(nullptr);
      log.DatedLine("");
      contents.push_back(Content());
    }
    contents.push_back(Content());
  } while (now() != begin);
  SetZone("UTC0");

  begin += is_morning ? -kHalfADay : kHalfADay;
  std::string expected;
  std::size_t i = 0;
  for (const char* const part : {kOpening, kEntries, kClosing}) {
    std::array<char, 256> text{};
    std::strftime(text.data(), text.size(), part, std::gmtime(&begin));
    expected += text.data();
    EXPECT_EQ(contents[i++], expected);
  }
  { DriverLog again("test.log"); }
  EXPECT_LT(Content().size(), expected.size()) << "replaces the one before";
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
