#include "platform/os/Module.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "tests/platform/Probe.h"

namespace {

std::string ProbePath() { return os::ThisModuleFolder() + "PlatformProbe.DLL"; }

int AnswerOf(const os::Module& module) {
  auto* const answer = module.FunctionOf<int()>("ProbeAnswer");
  return answer == nullptr ? -1 : answer();
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
  EXPECT_EQ(module_.FunctionOf<const char*()>("ProbeFolder")(), os::ThisModuleFolder());
  const std::filesystem::path file = module_.File();
  EXPECT_TRUE(std::filesystem::is_regular_file(file));
  EXPECT_EQ(file.parent_path() / "", std::filesystem::path(os::ThisModuleFolder()));
  const std::filesystem::path own = os::ThisModuleFile();
  EXPECT_EQ(own.parent_path(), file.parent_path());
  EXPECT_NE(own, file);
}

TEST_F(Module, MissingModuleGivesNothing) {
  EXPECT_FALSE(module_.Load(os::ThisModuleFolder() + "NoSuchModule.dll"));
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
