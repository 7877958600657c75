// measure RESOURCE [DETECTOR_FILE] - opens the instrument, sets a fixed frequency, steps through a
// range, prints the traces of all channels and what is in the error trail, and closes.
//
// The same source for Windows and Linux. The driver must be registered (`zk4n check` tells).
#ifdef _WIN32
#include <windows.h>
#endif

#include <ZentrelK4NLib.h>
#include <oleauto.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr double kCwFrequency = 2.4e9, kStart = 2.0e9, kStop = 2.8e9, kStep = 50e6;  // Hz
constexpr double kLevel = -10.0;                                                     // dBm
constexpr LONG kAveraging = 3;
constexpr std::chrono::seconds kPatience{10};
constexpr HRESULT kNoSession = 10057;
constexpr VARIANT_BOOL kTrue = -1, kFalse = 0;

/// One reference to an object of the driver.
template <typename Interface>
class Owned {
 public:
  Owned() = default;
  ~Owned() {
    if (pointer_ != nullptr) pointer_->Release();
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  Interface** Put() { return &pointer_; }
  Interface* Get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }

 private:
  Interface* pointer_ = nullptr;
};

/// Texts of the driver are UTF-16; a path knows how the system's narrow ones are written.
class Text {
 public:
  Text() = default;
  explicit Text(std::string_view narrow)
      : text_(SysAllocString(std::filesystem::path(narrow).string<OLECHAR>().c_str())) {}
  ~Text() { SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  BSTR* Put() { return &text_; }
  BSTR Get() const { return text_; }
  std::string Narrow() const {
    const std::basic_string_view<OLECHAR> wide(text_, SysStringLen(text_));
    return std::filesystem::path(wide).string();
  }

 private:
  BSTR text_ = nullptr;
};

std::string Hexadecimal(HRESULT result) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(result));
  return text;
}

/// The driver's own words about the failure; many have none.
std::string Description() {
  Owned<IErrorInfo> info;
  Text description;
  if (GetErrorInfo(0, info.Put()) != S_OK || info->GetDescription(description.Put()) != S_OK) {
    return {};
  }
  return ": " + description.Narrow();
}

/// Failures are negative. Of the other results only 0 is plain success: 1 to 6 are notices of the
/// instrument, Initialize has two warnings, and 10057 says that there is no session.
void Check(const char* member, HRESULT result) {
  if (result < 0 || result == kNoSession) {
    throw std::runtime_error(std::string(member) + ": " + Hexadecimal(result) + Description());
  }
  if (result != S_OK) std::printf("Note of %s: %s\n", member, Hexadecimal(result).c_str());
  // What was said on the way to a success is not about a later failure.
  SetErrorInfo(0, nullptr);
}

void Open(IZentrelK4N* driver, const std::string& resource) {
  // An identification query cannot be had: the driver opens the session, and says so by its result.
  const Text name(resource);
  Check("Initialize", driver->Initialize(name.Get(), kTrue, kFalse, nullptr));
  Owned<IZentrelK4NSystem> system;
  Text type, serial;
  Check("System", driver->get_System(system.Put()));
  Check("System.Type", system->get_Type(type.Put()));
  Check("System.SerialNum", system->get_SerialNum(serial.Put()));
  std::printf("Instrument: %s, serial number %s\n", type.Narrow().c_str(), serial.Narrow().c_str());
}

void SetFixedFrequency(IZentrelK4N* driver) {
  Owned<IZentrelK4NRF> rf;
  double frequency = 0.0, level = 0.0;
  VARIANT_BOOL enabled = kFalse;
  Check("RF", driver->get_RF(rf.Put()));
  Check("RF.Level", rf->put_Level(kLevel));
  Check("RF.Frequency", rf->put_Frequency(kCwFrequency));
  Check("RF.OutputEnabled", rf->put_OutputEnabled(kTrue));
  Check("RF.Frequency", rf->get_Frequency(&frequency));
  Check("RF.Level", rf->get_Level(&level));
  Check("RF.OutputEnabled", rf->get_OutputEnabled(&enabled));
  // Here true reads 1, in other places -1: only "not 0" is right everywhere.
  std::printf("Output: %.3f GHz, %.2f dBm, %s\n", frequency / 1e9, level,
              enabled != 0 ? "on" : "off");
}

void SetSweep(IZentrelK4N* driver) {
  Owned<IZentrelK4NSweep> sweep;
  Owned<IZentrelK4NFrequencyStep> steps;
  double start = 0.0, stop = 0.0, step = 0.0;
  Check("Sweep", driver->get_Sweep(sweep.Put()));
  Check("Sweep.FrequencyStep", sweep->get_FrequencyStep(steps.Put()));
  Check("Sweep.FrequencyStep.ConfigureStartStop",
        steps->ConfigureStartStop(kStart, kStop, ZentrelK4NFrequencyStepScalingLinear, kStep));
  // The instrument may have corrected them.
  Check("Sweep.FrequencyStep.Start", steps->get_Start(&start));
  Check("Sweep.FrequencyStep.Stop", steps->get_Stop(&stop));
  Check("Sweep.FrequencyStep.Size", steps->get_Size(&step));
  std::printf("Sweep: %.3f to %.3f GHz in steps of %.3f GHz\n", start / 1e9, stop / 1e9,
              step / 1e9);
  Check("Sweep.Configure",
        sweep->Configure(ZentrelK4NSweepModeFrequencyStep, ZentrelK4NSweepTriggerSourceSoftware));
}

void Acquire(IZentrelK4NAcquisition* acquisition) {
  const auto give_up = std::chrono::steady_clock::now() + kPatience;
  Check("Acquisition.Averaging", acquisition->put_Averaging(kAveraging));
  Check("Acquisition.Initiate", acquisition->Initiate());
  for (;;) {
    ZentrelK4NAcquisitionStatusEnum status = ZentrelK4NAcquisitionStatusUnknown;
    Check("Acquisition.Status", acquisition->get_Status(&status));
    if (status == ZentrelK4NAcquisitionStatusComplete) return;
    if (status == ZentrelK4NAcquisitionStatusUnknown)
      throw std::runtime_error("the measurement failed");
    if (std::chrono::steady_clock::now() > give_up) throw std::runtime_error("no data came");
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

std::vector<double> Fetch(IZentrelK4NChannel* channel, double& start, double& step) {
  SAFEARRAY* array = nullptr;  // what stood here would be lost
  void* data = nullptr;
  Check("Channel.FetchData", channel->FetchData(&array, &start, &step));
  Check("SafeArrayAccessData", SafeArrayAccessData(array, &data));
  const auto* const first = static_cast<const double*>(data);
  std::vector<double> values(first, first + array->rgsabound[0].cElements);
  SafeArrayUnaccessData(array);
  SafeArrayDestroy(array);
  return values;
}

struct Channel {
  Text name;
  Owned<IZentrelK4NChannel> channel;
  std::vector<double> trace;  // dBm
};

void Measure(IZentrelK4N* driver, const std::string& detector_file) {
  Owned<IZentrelK4NAcquisition> acquisition;
  Owned<IZentrelK4NChannels> all;
  LONG count = 0;
  double start = 0.0, step = 0.0;  // Hz
  Check("Acquisition", driver->get_Acquisition(acquisition.Put()));
  Check("Acquisition.Channels", acquisition->get_Channels(all.Put()));
  Check("Channels.Count", all->get_Count(&count));
  std::vector<Channel> channels(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < channels.size(); ++i) {
    Check("Channels.Name", all->get_Name(static_cast<LONG>(i) + 1, channels[i].name.Put()));
    Check("Channels.Item", all->get_Item(channels[i].name.Get(), channels[i].channel.Put()));
    if (detector_file.empty()) continue;  // the driver has loaded calibr20.det, where there is one
    Check("Channel.LoadDetectorDataFromFile",
          channels[i].channel->LoadDetectorDataFromFile(Text(detector_file).Get()));
  }
  Acquire(acquisition.Get());
  std::printf("     GHz");
  for (Channel& channel : channels) {
    channel.trace = Fetch(channel.channel.Get(), start, step);
    std::printf("  %s", channel.name.Narrow().c_str());
  }
  for (std::size_t point = 0; point < channels[0].trace.size(); ++point) {
    std::printf("\n%8.3f", (start + step * static_cast<double>(point)) / 1e9);
    for (const Channel& channel : channels) std::printf("%10.2f", channel.trace[point]);
  }
  std::printf("\n");
}

/// What the driver has written down: also failures that no result told of. Whether there is
/// nothing.
bool PrintErrorTrail(IZentrelK4N* driver) {
  Owned<IIviDriverUtility> utility;
  Check("Utility", driver->get_Utility(utility.Put()));
  int errors = 0;
  for (;; ++errors) {
    LONG code = 0;
    Text message;
    Check("Utility.ErrorQuery", utility->ErrorQuery(&code, message.Put()));
    if (code == 0) break;
    std::printf("Error: %s %s\n", Hexadecimal(code).c_str(), message.Narrow().c_str());
  }
  if (errors == 0) std::printf("No errors\n");
  return errors == 0;
}

/// Whether the action came to its end; if not, says why.
template <typename Action>
bool Attempt(Action action) {
  try {
    action();
    return true;
  } catch (const std::exception& failure) {
    std::printf("Failed: %s\n", failure.what());
    return false;
  }
}

/// Whether all went well.
bool Run(const std::string& resource, const std::string& detector_file) {
  Owned<IZentrelK4N> driver;
  const bool done = Attempt([&] {
    Check("CoCreateInstance",
          CoCreateInstance(__uuidof(ZentrelK4N), nullptr, CLSCTX_INPROC_SERVER,
                           __uuidof(IZentrelK4N), reinterpret_cast<void**>(driver.Put())));
    Open(driver.Get(), resource);
    SetFixedFrequency(driver.Get());
    SetSweep(driver.Get());
    Measure(driver.Get(), detector_file);
  });
  VARIANT_BOOL open = kFalse;
  if (driver.Get() != nullptr) driver->get_Initialized(&open);
  if (open == kFalse) return done;
  bool clean = false;
  const bool closed = Attempt([&] {
    clean = PrintErrorTrail(driver.Get());
    Check("Close", driver->Close());
    std::printf("Closed\n");
  });
  return done && clean && closed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: measure RESOURCE [DETECTOR_FILE]\n");
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  const bool done = Run(argv[1], argc > 2 ? argv[2] : "");
  CoUninitialize();
  return done ? 0 : 1;
}
