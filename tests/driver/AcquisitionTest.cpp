// Measurements: their life cycle, the traces of the channels, the detector files.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "measurement/DetectorFile.h"
#include "platform/os/Files.h"
#include "platform/os/Text.h"
#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

namespace fs = std::filesystem;

constexpr HRESULT kInProgress = Code(0x80047057);

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
};

TEST_F(Acquisition, GoesFromInitiateToCompleteWhenTheSweepHasEnded) {
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusUnknown);
  ExpectReported(FetchCode(), Code(0x80047000),
                 "ZentrelK4NLib: Failure \xE2\x80\x93 cannot recover.",
                 __uuidof(IZentrelK4NChannel));

  StartSweep(2e9, 2.8e9, 8e6);
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusInProgress);
  ExpectReported(FetchCode(), kInProgress, "ZentrelK4NLib: Operation in progress.",
                 __uuidof(IZentrelK4NChannel));
  EXPECT_EQ(surface_.array, nullptr);
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusInProgress);

  instrument_.FireTrigger();
  EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  ExpectResponse(kLevel, 101);
  EXPECT_EQ(Fetch("ChannelB").initial_x, 2e9);
  EXPECT_EQ(Fetch("ChannelB").x_increment, 8e6);

  EXPECT_EQ(surface_.acquisition->Abort(), S_OK);
  EXPECT_EQ(Status(), ZentrelK4NAcquisitionStatusUnknown);
  ExpectResponse(kLevel, 101);  // the trace before it
}

TEST_F(Acquisition, TheAxisIsTheSweepsWhateverTheChannelTransforms) {
  const auto channel = Channel("ChannelR");
  EXPECT_EQ(channel->put_FrequencyOffset(1e6), S_OK);
  EXPECT_EQ(channel->put_FrequencyMultiplier(2.0), S_OK);
  EXPECT_EQ(channel->put_FrequencyDivider(4.0), S_OK);
  RunSweep(1e9, 1.1e9, 1e7);
  EXPECT_EQ(Fetch("ChannelR").initial_x, 1e9);
  EXPECT_EQ(Fetch("ChannelR").x_increment, 1e7);

  EXPECT_EQ(surface_.power_step->ConfigureStartStop(-20.0, 0.0, 2.0), S_OK);
  EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModePowerStep), S_OK);
  EXPECT_EQ(surface_.rf->put_Frequency(1e9), S_OK);
  EXPECT_EQ(surface_.acquisition->Initiate(), S_OK);
  EXPECT_EQ(WaitForEnd(), ZentrelK4NAcquisitionStatusComplete);
  const Trace power = Fetch("ChannelA");
  EXPECT_EQ(power.initial_x, -20.0);
  EXPECT_EQ(power.x_increment, 2.0);
  ASSERT_EQ(power.values.size(), 11u);
  EXPECT_NEAR(power.values[10] - power.values[0], 20.0, 0.1);
}

TEST_F(Acquisition, ASoftwareTriggerReadsOneSweep) {
  RunSweep(1e9, 1.1e9, 1e7);
  const auto sweeps = instrument_.State().sweeps;
  EXPECT_EQ(surface_.root->SendSoftwareTrigger(), S_OK);
  EXPECT_TRUE(WaitUntil([&] { return instrument_.State().sweeps > sweeps; }));
  EXPECT_EQ(surface_.sweep->put_TriggerSource(ZentrelK4NSweepTriggerSourceExternal), S_OK);
  instrument_.ClearRequests();
  EXPECT_EQ(surface_.root->SendSoftwareTrigger(), S_OK) << "not the client's to pull";
  for (const auto& request : instrument_.Requests()) {
    EXPECT_EQ(request.command, 6) << "nothing is programmed: " << request.text;
  }
}

struct BadBlock {
  simulator::FaultKind kind;
  std::int16_t status;
  std::int32_t bytes;
};
constexpr BadBlock kBadBlocks[] = {
    {simulator::FaultKind::kBlockStatus, -32761, 0},  // PLL unlocked
    {simulator::FaultKind::kBodyLength, 0, -5},
};

TEST_F(Acquisition, ABadBlockDoesNotEndTheSession) {
  RunSweep(1e9, 1.1e9, 1e7);
  for (const auto& block : kBadBlocks) {
    SCOPED_TRACE(block.status);
    simulator::Fault fault;
    fault.kind = block.kind;
    fault.command = 6;
    fault.status = block.status;
    fault.bytes = block.bytes;
    fault.times = 1;
    instrument_.InjectFault(fault);
    const auto sweeps = instrument_.State().sweeps;
    surface_.acquisition->Initiate();
    EXPECT_TRUE(WaitUntil([&] { return instrument_.State().sweeps > sweeps; }));
    EXPECT_EQ(surface_.rf->put_Frequency(1e9), S_OK);
    EXPECT_EQ(TakeErrors(),
              block.status == 0 ? std::vector<LONG>{} : std::vector<LONG>{block.status});
    surface_.acquisition->Abort();
    RunSweep(1e9, 1.1e9, 1e7);
  }
}

// Detector files where clients name them, each with its own content.
class DetectorFiles : public Acquisition {
 protected:
  ~DetectorFiles() override {
    std::error_code error;
    for (const auto& file : files_) fs::remove(file, error);
  }
  /// A copy of the good file, or a file that holds no table.
  void Place(const fs::path& file, bool good) {
    fs::create_directories(file.parent_path());
    if (good) {
      fs::copy_file(ZK_DETECTOR_FILE, file, fs::copy_options::overwrite_existing);
    } else {
      std::ofstream(file) << "no table\n";
    }
    files_.push_back(file);
  }
  HRESULT Load(std::string_view name) {
    return surface_.channel->LoadDetectorDataFromFile(Text(name).Get());
  }
  static std::string Utf8(const fs::path& path) {
    const auto text = path.u8string();
    return {text.begin(), text.end()};
  }

  const std::string stamp_ =
      std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
  const fs::path here_ = fs::current_path() / "driver_test_detectors";
  std::vector<fs::path> files_;
};

TEST_F(DetectorFiles, AreLookedForInThreeWays) {
  const std::string shared = GetDetectorFolder();
  const IID channel = __uuidof(IZentrelK4NChannel);
  const std::string read = "ZentrelK4NLib: Error reading file ";
  const std::string name = "driver_test_" + stamp_ + ".det";
  const std::string russian = "driver_test_\xD0\xB4\xD0\xB5\xD1\x82_" + stamp_ + ".det";
  const std::string bad = "driver_test_bad_" + stamp_ + ".det";
  const std::u8string russian_name(russian.begin(), russian.end());
  Place(here_ / name, true);
  Place(here_ / bad, false);
  Place(os::NativePath(shared + name), true);
  Place(os::NativePath(shared + bad), false);

  EXPECT_EQ(Load(Utf8(here_ / name)), S_OK);
  ExpectReported(Load(Utf8(here_ / bad)), Code(0x80047003), read + Utf8(here_ / bad) + ".",
                 channel);
  EXPECT_EQ(Load(name), S_OK) << "in the shared folder";
  ExpectReported(Load(bad), Code(0x80047003),
                 read + os::ToNarrow(os::ToWide(shared + bad), os::kUtf8CodePage) + ".", channel);
  ExpectReported(Load("driver_test_missing.det"), Code(0x80047002),
                 "ZentrelK4NLib: Cannot open file driver_test_missing.det.", channel);
  ExpectReported(Load(Utf8(here_)), Code(0x80047002),
                 "ZentrelK4NLib: Cannot open file " + Utf8(here_) + ".", channel);

  // Letters that the code page of this computer lacks: found on the second attempt, and then taken
  // for good whatever stands in the file.
  Place(here_ / russian_name, true);
  EXPECT_EQ(Load(Utf8(here_ / russian_name)), S_OK);
  Place(here_ / russian_name, false);
  EXPECT_EQ(Load(Utf8(here_ / russian_name)), S_OK);

  RunSweep(1e9, 1.1e9, 1e7);
  ExpectResponse(kLevel, 11);  // failed loads have left the tables alone
}

TEST_F(DetectorFiles, TheDefaultOneIsLoadedByInitialize) {
  const fs::path previous = fs::current_path();
  Place(here_ / "calibr20.det", true);
  surface_.root->Close();
  fs::current_path(here_);
  EXPECT_EQ(Initialize(), S_OK);
  fs::current_path(previous);
  ASSERT_EQ(surface_.rf->put_Level(kLevel), S_OK);
  ExpectMeasures();
}

}  // namespace
}  // namespace driver_test
