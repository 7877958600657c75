#include "platform/os/Files.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/os/Notice.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

// "Данные.det" in Windows-1251.
constexpr const char* kCyrillicName = "\xC4\xE0\xED\xED\xFB\xE5.det";
constexpr const char16_t* kCyrillicNameUtf16 = u"\u0414\u0430\u043D\u043D\u044B\u0435.det";

std::string ContentOf(std::string_view narrow_name) {
  std::ifstream file = os::OpenForReading(narrow_name);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Files : public testing::Test {
 protected:
  [[nodiscard]] std::string InFolder(const std::string& name) const {
    return folder_.path().string() + "\\" + name;
  }
  TemporaryFolder folder_;
};

TEST_F(Files, BackslashesSeparateFolders) {
  std::filesystem::create_directories(folder_.path() / "a" / "b");
  os::OpenForWriting(InFolder("a\\b\\c.txt")) << "text\n";
  EXPECT_TRUE(std::filesystem::is_regular_file(folder_.path() / "a" / "b" / "c.txt"));
  EXPECT_EQ(ContentOf(InFolder("a\\b\\c.txt")), "text\n");
}

TEST_F(Files, WritingReplacesWhatWasThereAndReadingDoesNotTouchLineEnds) {
  for (const char* const text : {"a long first text", "a\r\nb\n\x1A"}) {
    os::OpenForWriting(InFolder("log.txt")) << text;
    EXPECT_EQ(ContentOf(InFolder("log.txt")), text);
  }
}

TEST_F(Files, CyrillicNameNeedsTheRussianLocale) {
  std::ofstream(folder_.path() / kCyrillicNameUtf16) << "found";
  EXPECT_FALSE(os::OpenForReading(InFolder(kCyrillicName)).is_open());
  {
    const os::LocaleSwitch russian("Russian");
    EXPECT_EQ(ContentOf(InFolder(kCyrillicName)), "found");
  }
  EXPECT_FALSE(os::OpenForReading(InFolder(kCyrillicName)).is_open());
}

TEST_F(Files, FolderMissingFileAndMissingFolderAreNotOpen) {
  EXPECT_FALSE(os::OpenForReading(folder_.path().string()).is_open());
  EXPECT_FALSE(os::OpenForReading(InFolder("missing.det")).is_open());
  EXPECT_FALSE(os::OpenForReading("").is_open());
  EXPECT_FALSE(os::OpenForWriting(InFolder("missing\\new.log")).is_open());
}

TEST(LocaleSwitch, NestedSwitchesRestoreEachOther) {
  const os::CodePage before = os::FileNameCodePage();
  {
    const os::LocaleSwitch russian("Russian");
    EXPECT_EQ(os::FileNameCodePage(), os::kCyrillicCodePage);
    {
      const os::LocaleSwitch english("English");
      EXPECT_EQ(os::FileNameCodePage(), os::kWesternCodePage);
    }
    EXPECT_EQ(os::FileNameCodePage(), os::kCyrillicCodePage);
  }
  EXPECT_EQ(os::FileNameCodePage(), before);
}

TEST(Folders, CommonFilesHaveNoSeparatorAtTheEnd) {
#ifndef _WIN32
  setenv("ZENTREL_COMMON_FILES", "/srv/common/", 1);
  EXPECT_EQ(os::CommonFilesFolder(), "/srv/common");
  unsetenv("ZENTREL_COMMON_FILES");
#endif
  const std::string folder = os::CommonFilesFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_EQ(folder.find_last_of("/\\") == folder.size() - 1, false) << folder;
}

TEST(Notice, HookReceivesTheWarningAndMaySetAnother) {
  std::string received;
  os::SetNoticeHook([&](const std::string& text, const std::string& caption) {
    received = caption + "|" + text;
    os::SetNoticeHook([](const std::string&, const std::string&) {});
  });
  os::ShowWarning("text", "caption");
  os::ShowWarning("other", "other");
  os::SetNoticeHook({});
  EXPECT_EQ(received, "caption|text");
}

}  // namespace
