// Measurements: their life cycle, the traces of the channels, the detector files.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <thread>

#include "measurement/DetectorFile.h"
#include "platform/os/Files.h"
#include "tests/driver/SessionFixture.h"
#include "tests/platform/EnvironmentVariable.h"
#include "tests/platform/TemporaryFolder.h"

using namespace measurement;

namespace driver_test {
namespace {

namespace fs = std::filesystem;

class Acquisition : public SessionTest {
 protected:
  void SetUp() override { OpenToMeasure(); }
  ZentrelK4NAcquisitionStatusEnum Status() {
    auto status = ZentrelK4NAcquisitionStatusUnknown;
    EXPECT_EQ(surface_.acquisition->get_Status(&status), S_OK);
    TakeErrorInfo();
    return status;
  }
  HRESULT FetchCode() {
    return surface_.channel->FetchData(&surface_.array, &surface_.number, &surface_.number_2);
  }
  void ExpectInProgress() {
    ExpectReported(FetchCode(), Code(0x80047057), "ZentrelK4NLib: Operation in progress.",
                   __uuidof(IZentrelK4NChannel));
    EXPECT_EQ(surface_.array, nullptr) << "not the trace of the measurement before";
  }
  Trace ExpectAxis(const char* channel, double initial_x, double x_increment) {
    Trace trace = Fetch(channel);
    EXPECT_EQ(trace.initial_x, initial_x);
    EXPECT_EQ(trace.x_increment, x_increment);
    return trace;
  }
  static constexpr std::uint16_t kLevelParameter = 79;
};

TEST_F(Acquisition, GoesFromInitiateToCompleteWhenTheSweepHasEnded) {
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusUnknown);
  ExpectReported(FetchCode(), Code(0x80047000),
                 "ZentrelK4NLib: Failure \xE2\x80\x93 cannot recover.",
                 __uuidof(IZentrelK4NChannel));

  StartSweep(2e9, 2.8e9, 8e6);
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusInProgress);
  ExpectInProgress();
  const auto before = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusInProgress);
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(18))
      << "a client in a loop must not keep a processor busy";

  instrument_.FireTrigger();
  EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  ExpectResponse(kLevel, 101);
  ExpectAxis("ChannelB", 2e9, 8e6);

  EXPECT_EQ(surface_.acquisition->Abort(), S_OK);
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusUnknown);
  ExpectResponse(kLevel, 101);  // the trace before it

  EXPECT_EQ(surface_.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceExternal), S_OK);
  EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
  ExpectInProgress();
}

TEST_F(Acquisition, TheAxisIsTheSweepsWhateverTheChannelTransforms) {
  const auto channel = Channel("ChannelR");
  EXPECT_EQ(channel->put_FrequencyOffset(1e6), S_OK);
  EXPECT_EQ(channel->put_FrequencyMultiplier(2.0), S_OK);
  EXPECT_EQ(channel->put_FrequencyDivider(4.0), S_OK);
  RunSweep(1e9, 1.1e9, 1e7);
  ExpectAxis("ChannelR", 1e9, 1e7);

  EXPECT_EQ(surface_.power_step->ConfigureStartStop(-20.0, 0.0, 2.0), S_OK);
  EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModePowerStep), S_OK);
  EXPECT_EQ(surface_.rf->put_Frequency(1e9), S_OK);
  Measure();
  const Trace power = ExpectAxis("ChannelA", -20.0, 2.0);
  ASSERT_EQ(power.values.size(), 11u);
  EXPECT_NEAR(power.values[10] - power.values[0], 20.0, 0.1);

  const auto frequencies = Doubles({1e9, 1.1e9, 1.3e9});
  SAFEARRAY* list = frequencies.Get();
  EXPECT_EQ(surface_.list->CreateFrequency(nullptr, &list), S_OK);
  EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModeList), S_OK);
  Measure();
  ExpectAxis("ChannelA", 0.0, 0.0);

  // Without a mode that the instrument took, a fetch measures by itself.
  surface_ = Surface(ModuleWithVisa());
  instrument_.InjectFault(simulator::Fault::Refuse(kLevelParameter, kRefusal));
  Open();
  LoadDetectors();
  instrument_.InjectFault(RefuseCommand(kDataCommand, kRefusal));
  EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
  EXPECT_EQ(FetchCode(), kRefusal);
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusUnknown);
  EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
  instrument_.ClearFaults();
  EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  ExpectAxis("ChannelA", 0.0, 0.0);
}

TEST_F(Acquisition, ASoftwareTriggerProgramsTheModeAgainAndReadsOneSweep) {
  RunSweep(1e9, 1.1e9, 1e7);
  for (const std::size_t refused : {0, 1}) {
    const auto sweeps = instrument_.State().sweeps;
    instrument_.ClearRequests();
    EXPECT_EQ(surface_.root->SendSoftwareTrigger(), S_OK);
    EXPECT_TRUE(WaitUntil([&] { return instrument_.State().sweeps > sweeps; })) << refused;
    EXPECT_EQ(TakeErrors(), std::vector<LONG>(refused, kRefusal)) << "heard of here only";
    EXPECT_EQ(std::ranges::count(instrument_.Requests(), kWriteCommand,
                                 &simulator::RequestRecord::command),
              refused == 0 ? 3 : 1)
        << "of the mode, which are told by the console";
    instrument_.InjectFault(simulator::Fault::Refuse(kLevelParameter, kRefusal));
  }
  instrument_.ClearFaults();
  EXPECT_EQ(surface_.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceExternal), S_OK);
  instrument_.ClearRequests();
  EXPECT_EQ(surface_.root->SendSoftwareTrigger(), S_OK) << "not the client's to pull";
  for (const auto& request : instrument_.Requests()) {
    EXPECT_EQ(request.command, kDataCommand) << "nothing is programmed: " << request.text;
  }
}

// A setting waits for the read that the worker has begun, nearly two seconds for a sweep that has
// not ended. The bound is far from both: the fastest of some settings tells.
TEST_F(Acquisition, ASettingPassesASlowSweepWithinTheReadCeiling) {
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "zevisa.ini";
  std::ofstream(file) << "[*]\nread-ceiling = 200\n";
  const EnvironmentVariable variable("ZEVISA_CONFIG", file);
  OpenToMeasure();
  StartSweep(2e9, 2.8e9, 8e6);
  auto fastest = std::chrono::steady_clock::duration::max();
  for (int i = 0; i < 5; ++i) {
    const auto is_reading = [&] { return instrument_.Requests().back().command == kDataCommand; };
    EXPECT_TRUE(WaitUntil(is_reading));
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(surface_.rf->put_Level(kLevel - i), S_OK);
    fastest = std::min(fastest, std::chrono::steady_clock::now() - before);
    EXPECT_EQ(instrument_.State().level.start, kLevel - i);
  }
  EXPECT_LT(fastest, std::chrono::milliseconds(1000));
  EXPECT_EQ(surface_.rf->put_Level(kLevel), S_OK);
  instrument_.FireTrigger();
  EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  ExpectResponse(kLevel, 101);
  EXPECT_THAT(TakeErrors(), testing::IsEmpty()) << "a ceiling is no failure";
}

// Detector files where clients name them, each with its own content.
class DetectorFiles : public Acquisition {
 protected:
  /// A copy of the good file, or a file that holds no table.
  static void PlaceFile(const fs::path& file, bool good) {
    fs::create_directories(file.parent_path());
    if (good) {
      fs::copy_file(ZK_DETECTOR_FILE, file, fs::copy_options::overwrite_existing);
    } else {
      std::ofstream(file) << "no table\n";
    }
  }
  HRESULT Load(std::string_view name) {
    return surface_.channel->LoadDetectorDataFromFile(Text(name).Get());
  }
  static std::string Utf8(const fs::path& path) {
    const auto text = path.u8string();
    return {text.begin(), text.end()};
  }

  const TemporaryFolder folder_;
  const fs::path here_ = folder_.path();
};

enum class Place { kHere, kShared, kNowhere };
struct FileCase {
  const char* name;  // without its end
  Place place;
  bool good;
  std::uint32_t result;
};
// In the code page of this computer, in the Russian one alone, in none.
constexpr FileCase kFileCases[] = {
    {"Gr\u00F6\u00DFe", Place::kHere, true, 0},
    {"Gr\u00F6\u00DFe", Place::kHere, false, 0x80047003},
    {"Gr\u00F6\u00DFe", Place::kShared, true, 0},
    {"Gr\u00F6\u00DFe", Place::kShared, false, 0x80047003},
    {"\u0434\u0435\u0442", Place::kHere, true, 0},
    {"\u0434\u0435\u0442", Place::kHere, false, 0},  // found on the second attempt: taken
    {"\u0434\u0435\u0442", Place::kShared, true, 0},
    {"\u0434\u0435\u0442", Place::kShared, false, 0x80047003},
    {"\u6E2C\u5B9A", Place::kHere, true, 0x80047002},
    {"\u6E2C\u5B9A", Place::kShared, true, 0x80047002},
    {"\u0434\u0435\u0442", Place::kNowhere, true, 0x80047002},
};

TEST_F(DetectorFiles, AreLookedForInThreeWays) {
  const fs::path shared = GetDetectorFolders().front();
  for (const FileCase& row : kFileCases) {
    const std::string name = row.name + Utf8(here_.filename()) + ".det";  // its own in each run
    const bool is_here = row.place != Place::kShared;
    const fs::path file =
        (is_here ? here_ : os::NativePath(shared)) / std::u8string(name.begin(), name.end());
    if (row.place != Place::kNowhere) PlaceFile(file, row.good);
    const std::string client_name = is_here ? Utf8(file) : name;
    const std::string found = is_here ? client_name : Utf8(shared) + client_name;
    const std::string text = row.result == 0 ? ""
                             : row.result == 0x80047002
                                 ? "ZentrelK4NLib: Cannot open file " + client_name + "."
                                 : "ZentrelK4NLib: Error reading file " + found + ".";
    SCOPED_TRACE(client_name + (row.good ? "" : ", no table"));
    ExpectReported(Load(client_name), Code(row.result), text, __uuidof(IZentrelK4NChannel));
    fs::remove(file);
  }
  RunSweep(1e9, 1.1e9, 1e7);
  ExpectResponse(kLevel, 11);  // failed loads have left the tables alone
}

TEST_F(DetectorFiles, LoadsOfManyObjectsDoNotDisturbEachOther) {
  constexpr int kLoads = 200;
  const fs::path files[] = {here_ / u"Gr\u00F6\u00DFe" / "a.det",
                            here_ / u"\u0434\u0435\u0442.det"};
  for (const fs::path& file : files) {
    PlaceFile(file, true);
    std::ofstream(file) << "0 10000\n0 10000\n0 10000\n";
  }
  constexpr int kThreads = 4;
  std::vector<std::jthread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([name = Text(Utf8(files[thread % 2]))] {
      Bench bench;
      bench.Open();
      int lost = 0;
      for (int load = 0; load < kLoads; ++load) {
        lost += bench.surface_.channel->LoadDetectorDataFromFile(name.Get()) == S_OK ? 0 : 1;
      }
      EXPECT_EQ(lost, 0) << TakeErrorInfo().description;
    });
  }
}

TEST_F(DetectorFiles, TheDefaultOneIsLoadedByInitialize) {
  const fs::path previous = fs::current_path();
  PlaceFile(here_ / "calibr20.det", true);
  surface_.root->Close();
  surface_ = Surface(ModuleWithVisa());  // without the tables that have been loaded before
  fs::current_path(here_);
  EXPECT_EQ(Initialize(), S_OK);
  fs::current_path(previous);
  ASSERT_EQ(surface_.rf->put_Level(kLevel), S_OK);
  ExpectMeasures();
}

}  // namespace
}  // namespace driver_test
