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

TEST(Module, LoadsByTheSystemsSearch) {
  os::Module module;
  ASSERT_TRUE(module.Load("PlatformProbe.dll"));
  EXPECT_EQ(AnswerOf(module), kProbeAnswer);
}

TEST(Module, LoadsFromTheFolderInTheName) {
  os::Module module;
  ASSERT_TRUE(module.Load(ProbePath()));
  EXPECT_EQ(AnswerOf(module), kProbeAnswer);
  EXPECT_EQ(module.Symbol("NoSuchName"), nullptr);
}

TEST(Module, KnowsItsOwnFolder) {
  os::Module module;
  ASSERT_TRUE(module.Load(ProbePath()));
  EXPECT_EQ(module.FunctionOf<const char*()>("ProbeFolder")(), os::ThisModuleFolder());
}

TEST(Module, KnowsItsFile) {
  os::Module module;
  EXPECT_TRUE(module.File().empty());
  ASSERT_TRUE(module.Load(ProbePath()));
  const std::filesystem::path file = module.File();
  EXPECT_TRUE(std::filesystem::is_regular_file(file));
  EXPECT_EQ(file.parent_path() / "", std::filesystem::path(os::ThisModuleFolder()));
  const std::filesystem::path own = os::ThisModuleFile();
  EXPECT_EQ(own.parent_path(), file.parent_path());
  EXPECT_NE(own, file);
}

TEST(Module, MissingModuleGivesNothing) {
  os::Module module;
  ASSERT_TRUE(module.Load(ProbePath()));
  EXPECT_FALSE(module.Load(os::ThisModuleFolder() + "NoSuchModule.dll"));
  EXPECT_FALSE(module.IsLoaded());
  EXPECT_EQ(module.Symbol("ProbeAnswer"), nullptr);
}

TEST(Module, MovedModuleIsUnloadedOnce) {
  os::Module first;
  ASSERT_TRUE(first.Load(ProbePath()));
  os::Module second = std::move(first);
  first = os::Module();
  EXPECT_EQ(AnswerOf(second), kProbeAnswer);
  second.Unload();
  second.Unload();
  EXPECT_FALSE(second.IsLoaded());
}

}  // namespace
