#include "platform/os/Files.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fstream>

#include "platform/com/Com.h"
#include "platform/os/GrowingFile.h"
#include "platform/os/Notice.h"
#include "tests/platform/EnvironmentVariable.h"
#include "tests/platform/TemporaryFolder.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargest = 20;

class Files : public testing::Test {
 protected:
  [[nodiscard]] fs::path InFolder(const fs::path& name) const {
    return fs::path(folder_.path()).concat("\\").concat(name.native());
  }
  [[nodiscard]] std::string ContentOf(const fs::path& name) const {
    return os::ReadWholeFile(InFolder(name), kLargest).value_or("not opened");
  }
  TemporaryFolder folder_;
};

TEST_F(Files, BackslashesSeparateFolders) {
  fs::create_directories(folder_.path() / "a" / "b");
  os::OpenForWriting(InFolder("a\\b\\c.txt")) << "text\n";
  EXPECT_TRUE(fs::is_regular_file(folder_.path() / "a" / "b" / "c.txt"));
  EXPECT_EQ(ContentOf("a\\b\\c.txt"), "text\n");
}

TEST_F(Files, WritingReplacesWhatWasThereAndReadingDoesNotTouchLineEnds) {
  for (const char* const text : {"a long first text", "a\r\nb\n\x1A"}) {
    os::OpenForWriting(InFolder("log.txt")) << text;
    EXPECT_EQ(ContentOf("log.txt"), text);
  }
}

TEST_F(Files, OneThatIsTooLargeIsEmpty) {
  for (const std::size_t size : {kLargest, kLargest + 1}) {
    const std::string text(size, 'x');
    os::OpenForWriting(InFolder("large.det")) << text;
    EXPECT_EQ(ContentOf("large.det"), size == kLargest ? text : "");
  }
}

TEST_F(Files, FolderMissingFileAndMissingFolderAreNotOpened) {
  for (const fs::path& path : {folder_.path(), InFolder(""), InFolder("missing.det"), fs::path()}) {
    EXPECT_EQ(os::ReadWholeFile(path, kLargest), std::nullopt) << path;
  }
  EXPECT_FALSE(os::OpenForWriting(InFolder("missing\\new.log")).is_open());
}

// Each would keep a reader waiting, or has no end.
TEST_F(Files, WhatIsNoRegularFileIsNotOpened) {
#ifdef _WIN32
  const fs::path pipe = R"(\\.\pipe\)" + folder_.path().filename().string();
  const HANDLE server = CreateNamedPipeW(pipe.c_str(), PIPE_ACCESS_DUPLEX, 0, 1, 0, 0, 0, nullptr);
  ASSERT_NE(server, INVALID_HANDLE_VALUE);
  const std::initializer_list<fs::path> paths{pipe, "NUL", "CON", InFolder("nul")};
#else
  ASSERT_EQ(mkfifo((folder_.path() / "fifo").c_str(), 0600), 0);
  const std::initializer_list<fs::path> paths{InFolder("fifo"), "/dev/null", "/dev/zero",
                                              "/dev/tty"};
#endif
  for (const fs::path& path : paths) {
    EXPECT_EQ(os::ReadWholeFile(path, kLargest), std::nullopt) << path;
  }
#ifdef _WIN32
  CloseHandle(server);
#endif
}

struct NameCase {
  os::WideString name;
  os::CodePage code_page;
  bool has_path;
};
const NameCase kNameCases[] = {
    {OLESTR("Gr\u00FC\u00DFe/calibr20.det"), os::kWesternCodePage, true},
    {OLESTR("Gr\u00FC\u00DFe/calibr20.det"), os::kCyrillicCodePage, false},
    {OLESTR("\u0434\u0435\u0442.det"), os::kWesternCodePage, false},
    {OLESTR("\u0434\u0435\u0442.det"), os::kCyrillicCodePage, true},
    {OLESTR("\u6E2C\u5B9A.det"), os::kCyrillicCodePage, false},
    {OLESTR("\u6E2C\u5B9A.det"), 65001, true},
    {OLESTR("\uFF21.det"), os::kWesternCodePage, false},  // not "A.det"
    {OLESTR("\u0101.det"), 1250, false},                  // not "a.det"
    {OLESTR("what?.det"), os::kWesternCodePage, true},
    {os::WideString(OLESTR("a")) + static_cast<os::WideChar>(0xD800), os::kUtf8CodePage, false},
};

TEST(FileNames, HaveAPathWhereTheCodePageHasTheirLetters) {
  for (const NameCase& row : kNameCases) {
    SCOPED_TRACE(os::ToNarrow(row.name, os::kUtf8CodePage) + std::to_string(row.code_page));
    const fs::path path = os::PathOf(row.name, row.code_page);
    EXPECT_EQ(path, row.has_path ? fs::path(row.name) : fs::path());
    EXPECT_TRUE(!row.has_path || os::WideOf(path) == row.name);
  }
}

TEST(Folders, CommonFilesHaveNoSeparatorAtTheEnd) {
#ifdef _WIN32
  const std::vector<fs::path> folders = os::CommonFilesFolders();
  ASSERT_EQ(folders.size(), 1U);
  EXPECT_TRUE(folders.front().has_filename()) << folders.front();
#else
  const auto expect = [](const std::vector<fs::path>& folders) {
    EXPECT_EQ(os::CommonFilesFolders(), folders);
  };
  const EnvironmentVariable home("XDG_DATA_HOME", "/home/u//");
  expect({"/home/u", "/usr/local/share", "/usr/share"});
  const EnvironmentVariable machine("XDG_DATA_DIRS", "/a/:none:/b");
  expect({"/home/u", "/a", "/b"});
  const EnvironmentVariable own("ZENTREL_COMMON_FILES", "/srv/\xE6\xB8\xAC/");
  expect({"/srv/\xE6\xB8\xAC"});
#endif
}

TEST(Folders, SettingsAreTheUsersThenTheMachines) {
#ifdef _WIN32
  const std::vector<fs::path> folders = os::SettingsFolders();
  ASSERT_EQ(folders.size(), 2U);
  EXPECT_TRUE(folders[0].is_absolute() && folders[1].is_absolute() && folders[0] != folders[1]);
  EXPECT_EQ(os::PathFromEnvironment("APPDATA"), folders[0]);
#else
  {
    const EnvironmentVariable user("XDG_CONFIG_HOME", "/home/u/");
    EXPECT_EQ(os::SettingsFolders(), (std::vector<fs::path>{"/home/u", "/etc/xdg"}));
  }
  const EnvironmentVariable user("XDG_CONFIG_HOME", "not/absolute");
  const EnvironmentVariable machine("XDG_CONFIG_DIRS", "/a/:none:/b");
  EXPECT_EQ(os::SettingsFolders(), (std::vector<fs::path>{"/a", "/b"}));
  EXPECT_EQ(os::PathFromEnvironment("XDG_CONFIG_DIRS"), "/a/:none:/b");
#endif
  EXPECT_EQ(os::PathFromEnvironment("ZENTREL_NO_SUCH_VARIABLE"), fs::path());
}

#ifndef _WIN32
TEST_F(Files, AGrowingFileLeavesNoDescriptorOpen) {
  const auto count = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
  const auto before = count();
  std::ofstream(folder_.path() / "file") << "text";
  for (const fs::path& path : {fs::path("/dev/null"), folder_.path() / "file"}) {
    os::GrowingFile{path};
  }
  EXPECT_EQ(count(), before);
}

TEST(Folders, DocumentsAreBelowTheHomeWhenNothingElseIsSaid) {
  const std::string home = getenv("HOME");
  EXPECT_EQ(os::DocumentsFolder(), home + "/Documents");
  const EnvironmentVariable desktop("XDG_DOCUMENTS_DIR", "/home/u/Texts/");
  EXPECT_EQ(os::DocumentsFolder(), "/home/u/Texts");
  const EnvironmentVariable own("ZENTREL_DOCUMENTS", "/srv/texts");
  EXPECT_EQ(os::DocumentsFolder(), "/srv/texts");
}
#endif

TEST_F(Files, AGrowingFileIsReadOnUntilAnotherTakesItsPlace) {
  const fs::path path = folder_.path() / "growing.txt";
  std::ofstream(path, std::ios::binary) << "abc";
  os::GrowingFile file(path);
  ASSERT_TRUE(file.IsOpen());
  std::array<char, 10> text{};
  EXPECT_EQ(file.Read(text), 3U);
  EXPECT_EQ(file.Read(text), 0U);
  std::ofstream(path, std::ios::binary | std::ios::app) << "d";
  EXPECT_TRUE(file.IsStillAt(path));
  EXPECT_EQ(file.Read(text), 1U);
  EXPECT_STREQ(text.data(), "dbc");
  EXPECT_FALSE(file.IsStillAt(folder_.path() / "missing"));
  const fs::path other = folder_.path() / "other.txt";
  std::ofstream(other, std::ios::binary) << "abcd";
  EXPECT_FALSE(file.IsStillAt(other));
  fs::resize_file(path, 3);
  EXPECT_FALSE(file.IsStillAt(path)) << "it has lost what was read";
  EXPECT_FALSE(os::GrowingFile(folder_.path()).IsOpen());
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
