// The module's registration: what its entry points write, take away, and make possible.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>

#include "platform/com/Raii.h"
#include "platform/com/RegKey.h"
#include "server/interface/Guids.h"
#include "tests/server/ClassesDump.h"
#include "tests/server/ModuleFixture.h"

using namespace server;

namespace {

std::string GuidText(REFGUID guid) { return os::ToNarrow(RegistryName(guid), os::kUtf8CodePage); }

void AddClass(const std::string& name, const std::string& clsid, const std::string& module,
              ClassesLines& lines) {
  const std::string text = "=" + name + " Class";
  const std::string prog_id = "ZentrelK4NLib." + name;
  const std::string key = "CLSID\\" + clsid;
  lines.insert({prog_id, prog_id + " " + text, prog_id + "\\CLSID", prog_id + "\\CLSID =" + clsid,
                prog_id + "\\CurVer", prog_id + "\\CurVer =" + prog_id + ".1", prog_id + ".1",
                prog_id + ".1 " + text, prog_id + ".1\\CLSID", prog_id + ".1\\CLSID =" + clsid});
  lines.insert({key, key + " " + text, key + " AppID=" + GuidText(kApplicationId), key + "\\ProgID",
                key + "\\ProgID =" + prog_id + ".1", key + "\\VersionIndependentProgID",
                key + "\\VersionIndependentProgID =" + prog_id, key + "\\InprocServer32",
                key + "\\InprocServer32 =" + module, key + "\\InprocServer32 ThreadingModel=Both",
                key + "\\TypeLib", key + "\\TypeLib =" + GuidText(LIBID_ZentrelK4NLib)});
}

/// All that the scripts write, but for the two keys that stay.
ClassesLines ExpectedLines(const std::string& module) {
  ClassesLines lines;
  static const std::regex published(R"(coclass (\w+) (\{.*\}) .*)");
  std::ifstream surface(ZK_EXPECTED_SURFACE);
  std::smatch found;
  for (std::string line; std::getline(surface, line);) {
    if (std::regex_match(line, found, published)) AddClass(found[1], found[2], module, lines);
  }
  const std::string root = "CLSID\\" + GuidText(__uuidof(ZentrelK4N));
  const std::string categories = root + "\\Implemented Categories";
  lines.insert({root + "\\ToolboxBitmap32", root + "\\ToolboxBitmap32 =" + module + ", 202",
                categories, categories + "\\{47ED5152-A398-11D4-BA58-000064657374}"});
  const std::string app_id = GuidText(kApplicationId);
  lines.insert({"AppID\\" + app_id, "AppID\\" + app_id + " =ZentrelK4NLib",
                "AppID\\ZentrelK4NLib.DLL", "AppID\\ZentrelK4NLib.DLL AppID=" + app_id});
  return lines;
}

ClassesLines Difference(const ClassesLines& a, const ClassesLines& b) {
  ClassesLines only_a;
  std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::inserter(only_a, only_a.end()));
  return only_a;
}

/// What the scripts write; the type library's registration is the system's work.
ClassesLines WithoutTypeLibrary(ClassesLines lines) {
  std::erase_if(lines, [](const std::string& line) {
    return line.starts_with("TypeLib\\") || line.starts_with("Interface\\");
  });
  return lines;
}

class RegistrationTest : public ModuleTest,
                         public testing::WithParamInterface<RegistrationScope> {};

TEST_P(RegistrationTest, WritesItsKeysAndLeavesNothingButTheSharedOnes) {
  const bool is_user = GetParam() == RegistrationScope::kUser;
  const RegistrationScope other = is_user ? RegistrationScope::kMachine : RegistrationScope::kUser;
  const ClassesLines before = DumpClasses(GetParam());
  const ClassesLines other_before = DumpClasses(other);

  ASSERT_EQ(Call(GetParam(), true), S_OK);
  ASSERT_EQ(Call(GetParam(), true), S_OK);
  ClassesLines written = Difference(WithoutTypeLibrary(DumpClasses(GetParam())), before);
  written.erase("AppID");
  written.erase("CLSID");
  const ClassesLines expected = ExpectedLines(os::ToNarrow(module_.File(), os::kUtf8CodePage));
  EXPECT_THAT(Difference(written, expected), testing::IsEmpty());
  EXPECT_THAT(Difference(expected, written), testing::IsEmpty());
  EXPECT_EQ(WithoutTypeLibrary(DumpClasses(other)), WithoutTypeLibrary(other_before));

  EXPECT_EQ(Call(GetParam(), false), S_OK);
  ClassesLines left = Difference(DumpClasses(GetParam()), before);
  left.erase("AppID");
  left.erase("CLSID");
  EXPECT_THAT(left, testing::IsEmpty());
  EXPECT_EQ(DumpClasses(other), other_before);
  EXPECT_EQ(Call(GetParam(), false), S_OK);
}

TEST_P(RegistrationTest, ClientsFindTheDriverByProgId) {
  if (!kScopesFoundByProgId.contains(GetParam())) {
    GTEST_SKIP() << "this system looks a ProgID up for all users alone";
  }
  ASSERT_EQ(Call(GetParam(), true), S_OK);
  CLSID class_id{};
  ASSERT_EQ(CLSIDFromProgID(OLESTR("ZentrelK4NLib.ZentrelK4N"), &class_id), S_OK);
  EXPECT_TRUE(IsEqualGUID(class_id, __uuidof(ZentrelK4N)));
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  ComPtr<IZentrelK4N> root;
  EXPECT_EQ(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IZentrelK4N),
                             root.PutVoid()),
            S_OK);
  root.Reset();
  CoUninitialize();
  EXPECT_EQ(Call(GetParam(), false), S_OK);
  EXPECT_EQ(CLSIDFromProgID(OLESTR("ZentrelK4NLib.ZentrelK4N"), &class_id), CO_E_CLASSSTRING);
}

INSTANTIATE_TEST_SUITE_P(Scopes, RegistrationTest,
                         testing::Values(RegistrationScope::kMachine, RegistrationScope::kUser),
                         [](const auto& row) {
                           return row.param == RegistrationScope::kUser ? "User" : "Machine";
                         });

TEST_F(ModuleTest, UnknownArgumentsAreRefused) {
  const ClassesLines before = DumpClasses(RegistrationScope::kMachine);
  auto* const install = module_.FunctionOf<Install>("DllInstall");
  for (const OLECHAR* arguments : {OLESTR("users"), OLESTR("use"), OLESTR("machine")}) {
    EXPECT_EQ(install(TRUE, arguments), E_INVALIDARG);
  }
  EXPECT_EQ(DumpClasses(RegistrationScope::kMachine), before);
  EXPECT_EQ(install(TRUE, OLESTR("")), S_OK);
  EXPECT_NE(DumpClasses(RegistrationScope::kMachine), before);
  EXPECT_EQ(install(FALSE, nullptr), S_OK);
}

#ifndef _WIN32
TEST_F(ModuleTest, RegistryThatCannotBeReadOrWrittenIsReported) {
  std::filesystem::create_directories(File().parent_path());
  std::ofstream(File()) << "no registry\n";
  for (const bool install : {true, false}) {
    EXPECT_EQ(Call(RegistrationScope::kMachine, install), HRESULT_FROM_WIN32(ERROR_BADDB));
  }
  setenv("ZENTREL_REGISTRY", "/proc/no-such-folder/registry", 1);
  EXPECT_EQ(Call(RegistrationScope::kMachine, true), HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
}
#endif

}  // namespace
