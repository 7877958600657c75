// The registry's file, and its merged view of classes.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>

#include "tests/platform/Content.h"
#include "tests/platform/RegistryFixture.h"

namespace {

const std::u16string kClasses = u"Software\\Classes\\";

class MergedRegistry : public RegistryTest {
 protected:
  [[nodiscard]] std::string FileText() const { return ContentOf(File()); }
  void WriteFile(const std::string& text) const {
    std::filesystem::create_directories(File().parent_path());
    std::ofstream(File(), std::ios::binary) << text;
  }
};

TEST_F(MergedRegistry, FileIsReadableText) {
  const Key key(HKEY_CURRENT_USER, u"Software\\Classes\\Lib.Class");
  SetText(key.Get(), nullptr, u"Lib \u0414 \"Class\"");
  SetText(key.Get(), u"Path", u"C:\\x\n");
  EXPECT_EQ(FileText(),
            "Zentrel registry 1\n"
            "\n[HKEY_CURRENT_USER]\n"
            "\n[HKEY_CURRENT_USER\\Software]\n"
            "\n[HKEY_CURRENT_USER\\Software\\Classes]\n"
            "\n[HKEY_CURRENT_USER\\Software\\Classes\\Lib.Class]\n"
            "@=\"Lib \xD0\x94 \\\"Class\\\"\"\n"
            "\"Path\"=\"C:\\\\x\\n\"\n");
}

TEST_F(MergedRegistry, FileThatIsNoRegistryIsNeitherReadNorOverwritten) {
  for (const char* text : {"something else\n", "Zentrel registry 1\n@=\"no key\"\n",
                           "Zentrel registry 1\n[HKEY_CURRENT_USER]\n\"a\"=\"open\n",
                           "Zentrel registry 1\n[HKEY_CURRENT_USER]\nword\n"}) {
    WriteFile(text);
    EXPECT_EQ(Key(HKEY_CURRENT_USER, u"Software").Result(), ERROR_BADDB) << text;
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, KEY_READ, &key), ERROR_BADDB)
        << text;
    EXPECT_EQ(FileText(), text);
  }
}

TEST_F(MergedRegistry, ChangesOfOthersAreSeenAtOnce) {
  const std::string head = "Zentrel registry 1\n[HKEY_CURRENT_USER]\n@=\"";
  WriteFile(head + "a\"\n");
  std::filesystem::last_write_time(
      File(), std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  EXPECT_EQ(TextOf(HKEY_CURRENT_USER, nullptr), u"a");
  EXPECT_EQ(TextOf(HKEY_CURRENT_USER, nullptr), u"a") << "kept";
  const auto tick = std::filesystem::file_time_type::clock::now();  // one for all of them
  for (const char* text : {"b", "c", "d"}) {
    WriteFile(head + text + "\"\n");
    std::filesystem::last_write_time(File(), tick);
    EXPECT_EQ(TextOf(HKEY_CURRENT_USER, nullptr), os::ToWide(text, os::kUtf8CodePage));
  }
  std::filesystem::remove(File());
  EXPECT_EQ(TextOf(HKEY_CURRENT_USER, nullptr), u"error 2");
}

/// The registry in two files, as where the driver is installed for all users.
class TwoFiles : public testing::Test {
 protected:
  static bool MayAllRead(const std::filesystem::path& file) {
    using std::filesystem::perms;
    return (status(file).permissions() & perms::others_read) != perms::none;
  }

  const TemporaryFolder folder_;
  const std::filesystem::path user_ = folder_.path() / "zentrel" / "registry";
  const std::filesystem::path machine_ = folder_.path() / "machine" / "registry";
  const EnvironmentVariable no_single_file_{"ZENTREL_REGISTRY", ""};
  const EnvironmentVariable data_home_{"XDG_DATA_HOME", folder_.path()};
  const EnvironmentVariable machine_registry_{"ZENTREL_MACHINE_REGISTRY", machine_};
};

TEST_F(TwoFiles, EachHoldsItsRoot) {
  const Key machine(HKEY_LOCAL_MACHINE, kClasses + u"Lib.Class");
  SetText(machine.Get(), nullptr, u"machine");
  EXPECT_TRUE(MayAllRead(machine_));
  EXPECT_FALSE(exists(user_.parent_path())) << "nothing of the user's is made";
  EXPECT_EQ(TextOf(Key(HKEY_CLASSES_ROOT, u"Lib.Class").Get(), nullptr), u"machine");
  const Key user(HKEY_CURRENT_USER, kClasses + u"Lib.Class");
  SetText(user.Get(), nullptr, u"user");
  EXPECT_FALSE(MayAllRead(user_));
  EXPECT_EQ(std::filesystem::status(user_.string() + ".lock").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_EQ(TextOf(Key(HKEY_CLASSES_ROOT, u"Lib.Class").Get(), nullptr), u"user");
  remove(user_);
  EXPECT_EQ(TextOf(Key(HKEY_CLASSES_ROOT, u"Lib.Class").Get(), nullptr), u"machine");
}

TEST_F(TwoFiles, TheMachinesIsForAdministrators) {
  setenv("ZENTREL_MACHINE_REGISTRY", "/sys/zentrel/registry", 1);
  EXPECT_EQ(Key(HKEY_LOCAL_MACHINE, kClasses + u"A").Result(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Key(HKEY_CURRENT_USER, kClasses + u"A").Result(), ERROR_SUCCESS);
  EXPECT_EQ(Key(HKEY_CLASSES_ROOT, u"A\\B").Result(), ERROR_SUCCESS) << "below the user's key";
  EXPECT_EQ(Key(HKEY_CLASSES_ROOT, u"C").Result(), ERROR_ACCESS_DENIED);
}

TEST_F(TwoFiles, ADeviceStaysOne) {
  const auto device = machine_.parent_path() / "device";
  create_directories(device.parent_path());
  create_symlink("/dev/null", device);
  setenv("ZENTREL_MACHINE_REGISTRY", device.c_str(), 1);
  EXPECT_EQ(Key(HKEY_LOCAL_MACHINE, kClasses + u"A").Result(), ERROR_WRITE_FAULT);
  EXPECT_TRUE(is_symlink(device));
}

TEST_F(MergedRegistry, KeyNameWithALineBreakIsRefused) {
  EXPECT_EQ(Key(HKEY_CURRENT_USER, u"A\n[B]").Result(), ERROR_INVALID_PARAMETER);
}

TEST_F(MergedRegistry, UsersClassesComeBeforeTheMachines) {
  const Key machine(HKEY_LOCAL_MACHINE, kClasses + u"Lib.Class");
  SetText(machine.Get(), nullptr, u"machine");
  SetText(machine.Get(), u"Only", u"machine only");
  const Key user(HKEY_CURRENT_USER, kClasses + u"LIB.class");
  SetText(user.Get(), nullptr, u"user");
  const Key merged(HKEY_CLASSES_ROOT, u"Lib.Class");
  EXPECT_EQ(merged.Disposition(), REG_OPENED_EXISTING_KEY);
  EXPECT_EQ(TextOf(merged.Get(), nullptr), u"user");
  EXPECT_EQ(TextOf(merged.Get(), u"Only"), u"machine only");
}

TEST_F(MergedRegistry, NewClassesAreTheMachinesUnlessBelowAUsersKey) {
  const Key user(HKEY_CURRENT_USER, kClasses + u"Users");
  const Key fresh(HKEY_CLASSES_ROOT, u"Fresh\\CLSID");
  const Key below(HKEY_CLASSES_ROOT, u"Users\\CLSID");
  EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, (kClasses + u"Fresh\\CLSID").c_str()));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, (kClasses + u"Fresh").c_str()));
  EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, (kClasses + u"Users\\CLSID").c_str()));
}

TEST_F(MergedRegistry, ViewListsEachNameOnce) {
  const Key machine(HKEY_LOCAL_MACHINE, kClasses + u"Both");
  const Key other(HKEY_LOCAL_MACHINE, kClasses + u"Other");
  const Key user(HKEY_CURRENT_USER, kClasses + u"BOTH");
  EXPECT_EQ(NamesIn(HKEY_CLASSES_ROOT).first, (std::vector<os::WideString>{u"BOTH", u"Other"}));
}

TEST_F(MergedRegistry, NoChangeOfTwoProcessesIsLost) {
  constexpr int kKeys = 60;
  const auto add_keys = [](const std::u16string& name) {
    for (int i = 0; i < kKeys; ++i) {
      if (Key(HKEY_CURRENT_USER, name + static_cast<char16_t>(u'\u4E00' + i)).Result() !=
          ERROR_SUCCESS)
        return false;
    }
    return true;
  };
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(add_keys(u"c") ? 0 : 1);
  EXPECT_TRUE(add_keys(u"p"));
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(NamesIn(HKEY_CURRENT_USER).first.size(), 2U * kKeys);
}

}  // namespace
