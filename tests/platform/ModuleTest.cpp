#include "platform/os/Module.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "platform/os/Files.h"
#include "tests/platform/Probe.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

fs::path ProbePath() { return os::ThisModuleFolder() / "PlatformProbe.DLL"; }

int AnswerOf(const os::Module& module) { return module.FunctionOf<int()>("ProbeAnswer")(); }

fs::path FolderOf(const os::Module& module) {
  return module.FunctionOf<const fs::path::value_type*()>("ProbeFolder")();
}

class Module : public testing::Test {
 protected:
  void SetUp() override {
    EXPECT_TRUE(module_.File().empty());
    ASSERT_TRUE(module_.Load(ProbePath()));
  }
  os::Module module_;
};

TEST(ModuleSearch, IsTheSystems) {
  os::Module module;
  ASSERT_TRUE(module.Load("PlatformProbe.dll"));
  EXPECT_EQ(AnswerOf(module), kProbeAnswer);
}

TEST_F(Module, LoadsFromTheFolderInTheName) {
  EXPECT_EQ(AnswerOf(module_), kProbeAnswer);
  EXPECT_EQ(module_.Symbol("NoSuchName"), nullptr);
}

TEST_F(Module, KnowsItsFileAndFolder) {
  EXPECT_EQ(FolderOf(module_), os::ThisModuleFolder());
  const fs::path file = module_.File();
  EXPECT_TRUE(fs::is_regular_file(file));
  EXPECT_EQ(file.parent_path() / "", os::ThisModuleFolder());
  const fs::path own = os::ThisModuleFile();
  EXPECT_EQ(own.parent_path(), file.parent_path());
  EXPECT_NE(own, file);
}

// No code page has all these letters.
TEST_F(Module, MayLieInAFolderOfAnyName) {
  const TemporaryFolder temporary;
  const fs::path folder = temporary.path() / u"\u00FC\u0434\u6E2C" / "";
  fs::create_directory(folder);
  const fs::path file = module_.File();
  fs::copy_file(file, folder / file.filename());
  const os::Module first = std::move(module_);
  ASSERT_TRUE(module_.Load(folder / "PlatformProbe.DLL"));
  EXPECT_EQ(FolderOf(module_), folder);
  EXPECT_EQ(fs::path(module_.File()).parent_path() / "", folder);
  module_.Unload();
#ifndef _WIN32
  for (const std::size_t length : {260, 261}) {
    const std::size_t rest = os::WideOf(folder).size() + os::WideOf(file.filename()).size() + 1;
    const fs::path deep = folder / std::string(length - rest, 'x') / "";
    fs::create_directory(deep);
    fs::copy_file(file, deep / "libaz.so");
    fs::copy_file(file, deep / file.filename());
    ASSERT_TRUE(module_.Load(deep / "AZ.dll"));
    ASSERT_TRUE(module_.Load(deep / "PlatformProbe.DLL"));
    EXPECT_EQ(FolderOf(module_), length == 260 ? deep : fs::path());
    module_.Unload();
  }
#endif
}

TEST_F(Module, MissingModuleGivesNothing) {
  EXPECT_FALSE(module_.Load(os::ThisModuleFolder() / "NoSuchModule.dll"));
  EXPECT_FALSE(module_.IsLoaded());
  EXPECT_EQ(module_.Symbol("ProbeAnswer"), nullptr);
}

TEST_F(Module, MovedModuleIsUnloadedOnce) {
  os::Module second = std::move(module_);
  module_ = os::Module();
  EXPECT_EQ(AnswerOf(second), kProbeAnswer);
  second.Unload();
  second.Unload();
  EXPECT_FALSE(second.IsLoaded());
}

}  // namespace
