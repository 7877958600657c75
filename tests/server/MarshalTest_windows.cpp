// Interfaces of the registered driver in another apartment than their object's: every call goes
// through the system's marshaller, which reads the registered type library.
#include <condition_variable>
#include <functional>
#include <utility>

#include "tests/driver/SessionFixture.h"

namespace driver_test {
namespace {

/// A thread that has entered an apartment and does there what it is given, one thing at a time. One
/// with a single thread takes calls for its objects meanwhile.
class Apartment {
 public:
  explicit Apartment(COINIT model) : thread_([this, model] { Live(model); }) {}
  ~Apartment() {
    Do({});
    thread_.join();
    CloseHandle(given_);
  }

  /// Returns when it is done; nothing to do ends the thread.
  void Do(std::function<void()> work) {
    std::unique_lock lock(mutex_);
    work_ = std::move(work);
    is_given_ = true;
    SetEvent(given_);
    done_.wait(lock, [this] { return !is_given_; });
  }

 private:
  void Live(COINIT model) {
    EXPECT_EQ(CoInitializeEx(nullptr, model), S_OK);
    while (Next()) {
    }
    CoUninitialize();
  }

  bool Next() {
    while (MsgWaitForMultipleObjects(1, &given_, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    const bool has_work = work_ != nullptr;
    if (has_work) work_();
    const std::lock_guard lock(mutex_);
    is_given_ = false;
    done_.notify_one();
    return has_work;
  }

  HANDLE given_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  std::mutex mutex_;
  std::condition_variable done_;
  std::function<void()> work_;
  bool is_given_ = false;
  std::thread thread_;
};

struct Way {
  const char* name;
  COINIT home;
  COINIT away;
};
void PrintTo(const Way& way, std::ostream* out) { *out << way.name; }

class Marshalling : public testing::TestWithParam<Way> {
 protected:
  static void SetUpTestSuite() { EXPECT_EQ(Entry("DllRegisterServer"), S_OK); }
  static void TearDownTestSuite() { EXPECT_EQ(Entry("DllUnregisterServer"), S_OK); }
  static HRESULT Entry(const char* name) {
    os::Module module;
    EXPECT_TRUE(module.Load(ZK_DRIVER_MODULE));
    return module.FunctionOf<HRESULT STDAPICALLTYPE()>(name)();
  }

  Marshalling() {
    instrument_.Start();
    home_.Do([this] {
      EXPECT_EQ(CoCreateInstance(__uuidof(ZentrelK4N), nullptr, CLSCTX_INPROC_SERVER,
                                 __uuidof(IZentrelK4N), root_.PutVoid()),
                S_OK);
    });
    Carry(root_, proxy_);
  }
  ~Marshalling() override {
    away_.Do([this] {
      proxy_->Close();
      proxy_.Reset();
    });
    home_.Do([this] { root_.Reset(); });
  }

  template <typename Interface>
  void Carry(const ComPtr<Interface>& object, ComPtr<Interface>& proxy) {
    IStream* stream = nullptr;
    home_.Do([&] {
      EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(__uuidof(Interface), object.Get(), &stream),
                S_OK);
    });
    away_.Do([&] {
      EXPECT_EQ(CoGetInterfaceAndReleaseStream(stream, __uuidof(Interface), proxy.PutVoid()), S_OK);
    });
    EXPECT_NE(proxy.Get(), object.Get()) << "the object itself has crossed, not a proxy";
  }
  void Open() {
    EXPECT_EQ(proxy_->Initialize(Text(instrument_.ResourceName()).Get(), VARIANT_FALSE,
                                 VARIANT_FALSE, nullptr),
              S_OK);
  }

  simulator::Simulator instrument_;
  Apartment home_{GetParam().home};
  Apartment away_{GetParam().away};
  ComPtr<IZentrelK4N> root_;
  ComPtr<IZentrelK4N> proxy_;
};

TEST_P(Marshalling, CarriesTextsNumbersFlagsAndEnumerations) {
  away_.Do([this] {
    Open();
    VARIANT_BOOL flag = 0;
    EXPECT_EQ(proxy_->get_Initialized(&flag), S_OK);
    EXPECT_EQ(flag, 1) << "not VARIANT_TRUE";
    ComPtr<IZentrelK4NRF> rf;
    ASSERT_EQ(proxy_->get_RF(rf.Put()), S_OK);
    double frequency = 0.0;
    EXPECT_EQ(rf->put_Frequency(1234567890.0), S_OK);
    EXPECT_EQ(rf->get_Frequency(&frequency), S_OK);
    EXPECT_EQ(frequency, 1234567890.0);
    EXPECT_EQ(rf->put_OutputEnabled(VARIANT_TRUE), S_OK);
    EXPECT_TRUE(instrument_.State().output_enabled);
    ComPtr<IZentrelK4NSweep> sweep;
    ASSERT_EQ(proxy_->get_Sweep(sweep.Put()), S_OK);
    EXPECT_EQ(sweep->put_Mode(ZentrelK4NSweepModePowerStep), S_OK);
    auto mode = ZentrelK4NSweepModeNone;
    EXPECT_EQ(sweep->get_Mode(&mode), S_OK);
    EXPECT_EQ(mode, ZentrelK4NSweepModePowerStep);
    ComPtr<IZentrelK4NAcquisition> acquisition;
    ComPtr<IZentrelK4NChannels> channels;
    ASSERT_EQ(proxy_->get_Acquisition(acquisition.Put()), S_OK);
    ASSERT_EQ(acquisition->get_Channels(channels.Put()), S_OK);
    Bstr name;
    EXPECT_EQ(channels->get_Name(2, name.Put()), S_OK);
    EXPECT_EQ(TakeText(name.Detach()), "ChannelB");
  });
}

TEST_P(Marshalling, CarriesArraysIn) {
  away_.Do([this] {
    Open();
    ComPtr<IZentrelK4NSweep> sweep;
    ComPtr<IZentrelK4NList> list;
    ASSERT_EQ(proxy_->get_Sweep(sweep.Put()), S_OK);
    ASSERT_EQ(sweep->get_List(list.Put()), S_OK);
    EXPECT_EQ(sweep->put_Mode(ZentrelK4NSweepModeList), S_OK);
    SafeArrayOwner frequencies = Doubles({1e9, 2e9, 99e9});
    SAFEARRAY* array = frequencies.Get();
    EXPECT_EQ(list->CreateFrequency(Text("a list").Get(), &array), S_OK);
    EXPECT_EQ(instrument_.State().frequency.list, (std::vector{1e9, 2e9, 20e9}));
    // Arrays of this member are declared as going in: what the instrument made of the values stays
    // in the object's apartment.
    EXPECT_EQ(ValuesOf(array), (std::vector{1e9, 2e9, 99e9}));
    array = nullptr;
    EXPECT_EQ(list->CreateFrequency(nullptr, &array), S_OK);
  });
}

TEST_P(Marshalling, CarriesAChildAndArraysOut) {
  ComPtr<IZentrelK4NChannel> channel;
  ComPtr<IZentrelK4NChannel> channel_proxy;
  home_.Do([&] {
    ComPtr<IZentrelK4NAcquisition> acquisition;
    ComPtr<IZentrelK4NChannels> channels;
    ASSERT_EQ(root_->get_Acquisition(acquisition.Put()), S_OK);
    ASSERT_EQ(acquisition->get_Channels(channels.Put()), S_OK);
    ASSERT_EQ(channels->get_Item(Text("ChannelR").Get(), channel.Put()), S_OK);
  });
  Carry(channel, channel_proxy);
  away_.Do([&] {
    Open();
    EXPECT_EQ(channel_proxy->LoadDetectorDataFromFile(Text(ZK_DETECTOR_FILE).Get()), S_OK);
    ComPtr<IZentrelK4NSweep> sweep;
    ComPtr<IZentrelK4NFrequencyStep> step_settings;
    ASSERT_EQ(proxy_->get_Sweep(sweep.Put()), S_OK);
    ASSERT_EQ(sweep->get_FrequencyStep(step_settings.Put()), S_OK);
    EXPECT_EQ(
        step_settings->ConfigureStartStop(1e9, 1.5e9, ZentrelK4NFrequencyStepScalingLinear, 1e8),
        S_OK);
    EXPECT_EQ(
        sweep->Configure(ZentrelK4NSweepModeFrequencyStep, ZentrelK4NSweepTriggerSourceSoftware),
        S_OK);
    ComPtr<IZentrelK4NAcquisition> acquisition;
    ASSERT_EQ(proxy_->get_Acquisition(acquisition.Put()), S_OK);
    EXPECT_EQ(acquisition->Initiate(), S_OK);
    auto status = ZentrelK4NAcquisitionStatusInProgress;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (status == ZentrelK4NAcquisitionStatusInProgress) {
      ASSERT_EQ(acquisition->get_Status(&status), S_OK);
      ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    }
    // The second time with the array of the first: a proxy, unlike the driver, puts the new values
    // into the array that it is given.
    SAFEARRAY* array = nullptr;
    for (int fetch = 0; fetch < 2; ++fetch) {
      double first = 0.0;
      double step = 0.0;
      ASSERT_EQ(channel_proxy->FetchData(&array, &first, &step), S_OK);
      EXPECT_EQ(ValuesOf(array).size(), 6U);
      EXPECT_EQ(first, 1e9);
      EXPECT_EQ(step, 1e8);
    }
    SafeArrayDestroy(array);
    channel_proxy.Reset();
  });
  home_.Do([&] { channel.Reset(); });
}

TEST_P(Marshalling, CarriesFailuresAndCodesOfSuccess) {
  away_.Do([this] {
    EXPECT_EQ(proxy_->Close(), kNotConnectedCode);
    ComPtr<IZentrelK4NSyncGenerator> sync;
    ASSERT_EQ(proxy_->get_SyncGenerator(sync.Put()), S_OK);
    EXPECT_EQ(sync->put_Width(1e-6), kNoSessionCode);
    ComPtr<IIviDriverUtility> utility;
    ASSERT_EQ(proxy_->get_Utility(utility.Put()), S_OK);
    EXPECT_EQ(utility->Reset(), kMethodCode);
    Open();
    instrument_.InjectFault(simulator::Fault::Refuse(0, kRefusal, 1));
    ComPtr<IZentrelK4NRF> rf;
    ASSERT_EQ(proxy_->get_RF(rf.Put()), S_OK);
    EXPECT_EQ(rf->put_Frequency(2e9), kRefusal);
    LONG code = 0;
    BSTR text = Text("passed in").Detach();
    EXPECT_EQ(utility->ErrorQuery(&code, &text), S_OK);
    EXPECT_EQ(code, kRefusal);
    EXPECT_EQ(TakeText(std::exchange(text, nullptr)), "-321");
    do {
      EXPECT_EQ(utility->ErrorQuery(&code, &text), S_OK);
    } while (code != 0);
    EXPECT_EQ(text, nullptr);
  });
}

constexpr Way kWays[] = {
    {"SingleToMulti", COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED},
    {"MultiToSingle", COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED},
    {"SingleToSingle", COINIT_APARTMENTTHREADED, COINIT_APARTMENTTHREADED},
};
INSTANTIATE_TEST_SUITE_P(Ways, Marshalling, testing::ValuesIn(kWays),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace driver_test
