// The call log as somebody reads it: each test has a module of its own, since a module opens one
// log.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <limits>
#include <map>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "K4NHardWare/CallLog.h"
#include "driver/ZentrelK4N.h"
#include "platform/com/RegKey.h"
#include "platform/os/Files.h"
#include "platform/os/Notice.h"
#include "platform/os/Process.h"
#include "server/ClassFactory.h"
#include "simulator/Simulator.h"
#include "tests/driver/DriverModule.h"
#include "tests/platform/Arrays.h"
#include "tests/platform/Content.h"
#include "tests/platform/EnvironmentVariable.h"

using namespace server;

namespace driver_test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

/// The logs of one test, in the documents folder.
class CallLogTest : public testing::Test {
 protected:
  CallLogTest() {
    fs::create_directories(folder_);
    // Windows keeps what a test before has open.
    for (const auto& file : Files()) fs::remove(file, ignored_);
    before_ = Files();
  }

  [[nodiscard]] std::string Content(const std::string& name) const {
    return ContentOf(folder_ / name);
  }
  /// The lines since the last look, each "[date and time] thread what", without what is another
  /// each time: of this thread no number, for identities "@", and no microseconds.
  std::vector<std::string> NewLines(const std::string& name) {
    static const std::regex shape(R"(\d\d/\d\d/\d\d \[\d\d:\d\d:\d\d\] (\d+) )"
                                  R"((?:0x([0-9a-f]+) (.*), \d+ us|(error trail: .*)))");
    const std::string content = Content(name);
    std::vector<std::string> lines;
    for (std::size_t at = content.find("\r\n", std::max<std::size_t>(seen_, 4));
         at != std::string::npos;) {
      const std::size_t begin = at + 2;
      at = content.find("\r\n", begin);
      const std::string line = content.substr(begin, at - begin);
      std::smatch found;
      EXPECT_TRUE(std::regex_match(line, found, shape)) << line;
      const std::string thread = found[1];
      lines.push_back((thread == std::to_string(os::ThreadNumber()) ? "" : thread + " ") +
                      (found[4].matched ? found[4].str() : "@ " + found[3].str()));
    }
    seen_ = content.size();
    return lines;
  }

  [[nodiscard]] std::vector<fs::path> Files() const {
    return {fs::directory_iterator(folder_), fs::directory_iterator()};
  }

  const fs::path folder_ = os::DocumentsFolder() / "zentrel lumigraf";
  std::error_code ignored_;
  std::vector<fs::path> before_;
  std::size_t seen_ = 0;
};

/// A module that has opened the log of this name.
class LoggedModule : public DriverModule {
 public:
  explicit LoggedModule(const std::string& name) : DriverModule(Company::kVisaLibrary) {
    const EnvironmentVariable variable("ZENTREL_LOG", name);
    Create(__uuidof(ZentrelK4N));
  }
};

/// A text without a length before it, as some C clients pass one.
struct NoBstr {
  alignas(8) std::uint32_t padding = 0;
  std::uint32_t length = 0x7FFFFFFE;
  OLECHAR text[4] = {'a', 'b', 'c', 0};
};

TEST_F(CallLogTest, TellsArgumentsAndResultsAsTheyAre) {
  simulator::Simulator instrument{simulator::Options()};
  instrument.Start();
  LoggedModule driver("calls-*.log");
  const std::string name = "calls-" + std::to_string(os::ProcessNumber()) + ".log";
  Surface s(driver);
  NewLines(name);
  const auto expect_line = [&](const std::string& line) {
    EXPECT_THAT(NewLines(name), ElementsAre("@ I" + line));
  };
  const std::string resource = instrument.ResourceName();
  Bstr text;

  s.rf->put_Frequency(1e9);
  expect_line("ZentrelK4NRF.put_Frequency(1e+09) = 0x8004701D (not connected)");
  s.root->Initialize(Text(resource).Get(), 2, VARIANT_FALSE, nullptr);
  expect_line("ZentrelK4N.Initialize(ResourceName=\"" + resource +
              "\", IdQuery=2, Reset=false, OptionString=null) = "
              "0x00047065 (identification query not supported)");
  s.rf->Configure(2400000000.5, -0.1);
  expect_line("ZentrelK4NRF.Configure(Frequency=2400000000.5, PowerLevel=-0.1) = S_OK");
  s.rf->get_Frequency(&s.number);
  expect_line("ZentrelK4NRF.get_Frequency() = S_OK (2.4e+09)");
  s.rf->get_Frequency(nullptr);
  expect_line("ZentrelK4NRF.get_Frequency() = 0x80004003 (E_POINTER)");
  s.rf->put_OutputEnabled(VARIANT_TRUE);
  expect_line("ZentrelK4NRF.put_OutputEnabled(true) = S_OK");
  s.rf->put_Level(std::numeric_limits<double>::quiet_NaN());
  expect_line("ZentrelK4NRF.put_Level(nan) = S_OK");
  s.system->get_Type(text.Put());
  expect_line("ZentrelK4NSystem.get_Type() = S_OK (\"K4N-20\")");
  s.sweep->put_Mode(ZentrelK4NSweepModePowerStep);
  expect_line("ZentrelK4NSweep.put_Mode(ZentrelK4NSweepModePowerStep) = S_OK");
  ZentrelK4NSweepModeEnum mode{};
  s.sweep->get_Mode(&mode);
  expect_line("ZentrelK4NSweep.get_Mode() = S_OK (ZentrelK4NSweepModePowerStep)");
  s.sweep->put_Mode(static_cast<ZentrelK4NSweepModeEnum>(77));
  expect_line("ZentrelK4NSweep.put_Mode(77) = 0x80047013 (enumeration value not supported)");

  const SafeArrayOwner two = Doubles({1e9, 2e9}, 1);
  SAFEARRAYBOUND bounds[2] = {{3, -1}, {2, 0}};
  const SafeArrayOwner table(SafeArrayCreate(VT_I4, 2, bounds));
  SAFEARRAY* arrays[] = {two.Get(), table.Get(), nullptr};
  s.list->CreateFrequencyPower(Text("a\"b\\c\nd\u0444").Get(), &arrays[0], &arrays[2]);
  expect_line(
      "ZentrelK4NList.CreateFrequencyPower(Name=\"a\\\"b\\\\c\\x0ad\u0444\", "
      "Frequency=2 of double [1..2], Power=null) = S_OK");
  s.list->CreatePower(Text(std::string(300, 'x')).Get(), &arrays[1]);
  expect_line("ZentrelK4NList.CreatePower(Name=\"" + std::string(200, 'x') +
              "...\", Power=6 of type 3 [-1..1][0..1]) = 0x80070057 (E_INVALIDARG)");
  NoBstr no_bstr;
  s.list->CreatePower(no_bstr.text, nullptr);
  expect_line("ZentrelK4NList.CreatePower(Name=\"abc...\", Power=null) = S_OK");
  ComPtr<IZentrelK4NChannel> channel;
  s.channels->get_Item(Text("ChannelB").Get(), channel.Put());
  expect_line("ZentrelK4NChannels.get_Item(Name=\"ChannelB\") = S_OK (Item=IZentrelK4NChannel)");
  s.utility->ErrorQuery(&s.integer, text.Put());
  expect_line("IviDriverUtility.ErrorQuery() = S_OK (ErrorCode=0, ErrorMessage=null)");
  s.root->Close();
  expect_line("ZentrelK4N.Close() = S_OK");
}

TEST_F(CallLogTest, TellsAFailureBeforeTheCallThatMetIt) {
  LoggedModule driver("calls.log");
  Surface surface(driver);
  NewLines("calls.log");
  const HRESULT result = surface.root->Initialize(Text("no name").Get(), 0, 0, nullptr);
  const ErrorInfo info = TakeErrorInfo();
  EXPECT_EQ(result, Code(0x80047060));
  EXPECT_THAT(info.description, HasSubstr("no name")) << "the log leaves error information alone";
  EXPECT_THAT(NewLines("calls.log"),
              ElementsAre("error trail: 0xBFFF0012 (VI_ERROR_INV_RSRC_NAME), "
                          "File: .\\K4NHardWare\\K4NManager Line: 991",
                          "@ IZentrelK4N.Initialize(ResourceName=\"no name\", IdQuery=false, "
                          "Reset=false, OptionString=null) = 0x80047060 (unknown resource)"));
}

TEST_F(CallLogTest, KeepsIdentityAndReferences) {
  const LoggedModule driver("calls.log");
  Outer outer;
  for (IUnknown* const controlling :
       {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(&outer)}) {
    const auto object = driver.Create(__uuidof(ZentrelK4N), controlling);
    outer.inner = object.Get();
    IUnknown* const identity = controlling == nullptr ? object.Get() : controlling;
    const auto root = object.As<IZentrelK4N>();
    EXPECT_NE(static_cast<IUnknown*>(root.Get()), object.Get()) << "a forwarder";
    for (const auto& rf : {object.As<IZentrelK4NRF>(), root.As<IZentrelK4NRF>(),
                           root.As<ISupportErrorInfo>().As<IZentrelK4NRF>()}) {
      NewLines("calls.log");
      EXPECT_EQ(rf->put_Level(0), kNotConnectedCode);
      EXPECT_THAT(NewLines("calls.log"), ElementsAre(HasSubstr("put_Level(0)")));
      EXPECT_EQ(rf.As<IUnknown>().Get(), identity);
    }
    void* out = &out;
    EXPECT_EQ(root->QueryInterface(__uuidof(IIviDriver), &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(driver.CanUnloadNow(), S_FALSE);
  }
  EXPECT_EQ(outer.references, 1U);
  EXPECT_EQ(driver.CanUnloadNow(), S_OK);
}

TEST_F(CallLogTest, SixteenThreadsOfTwoDriversWriteWholeLines) {
  constexpr int kThreads = 16;
  constexpr int kCalls = 250;
  LoggedModule driver("calls.log");
  const Surface surfaces[] = {Surface(driver), Surface(driver)};
  NewLines("calls.log");
  std::vector<std::jthread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([rf = surfaces[thread % 2].rf.Get(), thread] {
      for (int call = 0; call < kCalls; ++call) rf->put_Level(thread * kCalls + call);
    });
  }
  threads.clear();
  std::map<std::string, int> counts;  // by what was called with what
  for (const auto& line : NewLines("calls.log")) ++counts[line.substr(line.find('@'))];
  for (int value = 0; value < kThreads * kCalls; ++value) {
    EXPECT_EQ(counts["@ IZentrelK4NRF.put_Level(" + std::to_string(value) +
                     ") = 0x8004701D (not connected)"],
              1)
        << value;
  }
  EXPECT_EQ(counts.size(), std::size_t{kThreads} * kCalls);
}

TEST_F(CallLogTest, GoesOnWhenTheModuleWasUnloadedAndWhenItIsOpenedAgain) {
  { const LoggedModule driver("calls.log"); }
  EXPECT_THAT(Content("calls.log"), testing::Not(HasSubstr("Log closed")));
  LoggedModule first("calls.log");
  Surface surface(first);
  EXPECT_GT(NewLines("calls.log").size(), 10U);
  const LoggedModule second("calls.log");
  seen_ = 0;
  EXPECT_TRUE(NewLines("calls.log").empty()) << "truncated";
  surface.rf->put_Level(1);
  second.Create(__uuidof(ZentrelK4N)).As<IZentrelK4NRF>()->put_Level(2);
  EXPECT_THAT(NewLines("calls.log"),
              ElementsAre(HasSubstr("put_Level(1)"), HasSubstr("put_Level(2)")));
}

TEST_F(CallLogTest, IsNamedByTheRegistrationUnlessTheEnvironmentNamesOne) {
  const os::WideString name =
      OLESTR("Software\\Classes\\CLSID\\") + RegistryName(__uuidof(ZentrelK4N));
  RegKey key;
  ASSERT_EQ(key.Create(HKEY_LOCAL_MACHINE, name), ERROR_SUCCESS);
  ASSERT_EQ(SetRegistryText(key.Get(), OLESTR("CallLog"), OLESTR("registered.log")), ERROR_SUCCESS);
  const LoggedModule named("named.log");
  EXPECT_FALSE(fs::exists(folder_ / "registered.log"));
  const LoggedModule registered("");
  EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, name.c_str()), ERROR_SUCCESS);
  EXPECT_THAT(Content("named.log"), HasSubstr("Log started"));
  EXPECT_THAT(Content("registered.log"), HasSubstr("Log started"));
}

TEST_F(CallLogTest, OffMakesNoFileAndPutsNothingBeforeTheInterfaces) {
  const LoggedModule driver("");
  const auto object = driver.Create(__uuidof(ZentrelK4N));
  EXPECT_EQ(object.As<IZentrelK4N>().Get(), object.Get());
  EXPECT_EQ(Files(), before_);
}

// Here the driver is the program's own, so that the warning can be seen.
TEST_F(CallLogTest, OneThatCannotBeOpenedWarnsOnceAndTheDriverWorks) {
  ClassFactory<CZentrelK4N> factory;
  const auto create = [&factory] {
    ComPtr<IZentrelK4N> root;
    EXPECT_EQ(factory.CreateInstance(nullptr, __uuidof(IZentrelK4N), root.PutVoid()), S_OK);
    EXPECT_EQ(root.As<IUnknown>().Get(), root.Get()) << "no forwarder";
  };
  std::vector<std::string> notices;
  os::SetNoticeHook([&](const std::string& text, const std::string& caption) {
    notices.push_back(caption + ": " + text);
    create();  // as a client's timer may while the box waits
  });
  const EnvironmentVariable variable("ZENTREL_LOG", "no such folder\\calls.log");
  create();
  create();
  os::SetNoticeHook({});
  EXPECT_THAT(notices, ElementsAre("ZeVISA Error: Error creating logfile!"));
  EXPECT_EQ(Files(), before_);
}

#ifndef _WIN32
TEST_F(CallLogTest, AFullDiskLosesLinesAndNothingElse) {
  fs::create_symlink("/dev/full", folder_ / "full.log");
  LoggedModule driver("full.log");
  Surface surface(driver);
  ExpectReported(surface.rf->put_Level(1), kNotConnectedCode, kNotConnected,
                 __uuidof(IZentrelK4NRF));
  fs::remove(folder_ / "full.log");
}
#endif

}  // namespace
}  // namespace driver_test
