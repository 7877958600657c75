// Interfaces of the registered driver in another apartment than their object's: every call goes
// through the system's marshaller, which reads the registered type library.
#include <functional>
#include <utility>

#include "platform/os/Sync.h"
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
    work_ = std::move(work);
    SetEvent(given_);
    done_.Acquire();
  }

 private:
  void Live(COINIT model) {
    EXPECT_EQ(CoInitializeEx(nullptr, model), S_OK);
    for (bool lives = true; lives; done_.Release()) {
      while (MsgWaitForMultipleObjects(1, &given_, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
      }
      lives = work_ != nullptr;
      if (lives) work_();
    }
    CoUninitialize();
  }

  HANDLE given_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  os::Semaphore done_;
  std::function<void()> work_;
  std::thread thread_;
};

struct Way {
  const char* name;
  COINIT home;
  COINIT away;
};
void PrintTo(const Way& way, std::ostream* out) { *out << way.name; }

/// What the fixture of sessions does goes through proxies here, in the other apartment.
class Marshalling : public testing::TestWithParam<Way>, protected Bench {
 protected:
  static void SetUpTestSuite() { EXPECT_EQ(Entry("DllRegisterServer"), S_OK); }
  static void TearDownTestSuite() { EXPECT_EQ(Entry("DllUnregisterServer"), S_OK); }
  static HRESULT Entry(const char* name) {
    os::Module module;
    EXPECT_TRUE(module.Load(ZK_DRIVER_MODULE));
    return module.FunctionOf<HRESULT STDAPICALLTYPE()>(name)();
  }

  Marshalling() {
    IStream* stream = nullptr;
    home_.Do([&] {
      EXPECT_EQ(CoCreateInstance(__uuidof(ZentrelK4N), nullptr, CLSCTX_INPROC_SERVER,
                                 __uuidof(IZentrelK4N), root_.PutVoid()),
                S_OK);
      EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(__uuidof(IZentrelK4N), root_.Get(), &stream),
                S_OK);
    });
    away_.Do([&] {
      ComPtr<IZentrelK4N> proxy;
      EXPECT_EQ(CoGetInterfaceAndReleaseStream(stream, __uuidof(IZentrelK4N), proxy.PutVoid()),
                S_OK);
      EXPECT_NE(proxy.Get(), root_.Get()) << "the object itself has crossed, not a proxy";
      surface_ = Surface(proxy);
    });
  }
  ~Marshalling() override {
    away_.Do([this] {
      surface_.root->Close();
      surface_ = Surface();
    });
    home_.Do([this] { root_.Reset(); });
  }

  Apartment home_{GetParam().home};
  Apartment away_{GetParam().away};
  ComPtr<IZentrelK4N> root_;
};

TEST_P(Marshalling, CarriesTextsNumbersFlagsAndEnumerations) {
  away_.Do([this] {
    Open();
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(surface_.flag, 1) << "not VARIANT_TRUE";
    EXPECT_EQ(surface_.rf->put_Frequency(1234567890.0), S_OK);
    EXPECT_EQ(surface_.rf->get_Frequency(&surface_.number), S_OK);
    EXPECT_EQ(surface_.number, 1234567890.0);
    EXPECT_EQ(surface_.rf->put_OutputEnabled(VARIANT_TRUE), S_OK);
    EXPECT_TRUE(instrument_.State().output_enabled);
    EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModePowerStep), S_OK);
    auto mode = ZentrelK4NSweepModeNone;
    EXPECT_EQ(surface_.sweep->get_Mode(&mode), S_OK);
    EXPECT_EQ(mode, ZentrelK4NSweepModePowerStep);
    EXPECT_EQ(surface_.channels->get_Name(2, &surface_.text), S_OK);
    EXPECT_EQ(TakeText(surface_.text), "ChannelB");
  });
}

TEST_P(Marshalling, CarriesArraysIn) {
  away_.Do([this] {
    Open();
    EXPECT_EQ(surface_.sweep->put_Mode(ZentrelK4NSweepModeList), S_OK);
    SafeArrayOwner frequencies = Doubles({1e9, 2e9, 99e9});
    SAFEARRAY* array = frequencies.Get();
    EXPECT_EQ(surface_.list->CreateFrequency(Text("a list").Get(), &array), S_OK);
    EXPECT_EQ(instrument_.State().frequency.list, (std::vector{1e9, 2e9, 20e9}));
    // Arrays of this member are declared as going in: what the instrument made of the values stays
    // in the object's apartment.
    EXPECT_EQ(ValuesOf(array), (std::vector{1e9, 2e9, 99e9}));
    array = nullptr;
    EXPECT_EQ(surface_.list->CreateFrequency(nullptr, &array), S_OK);
  });
}

TEST_P(Marshalling, CarriesArraysOut) {
  away_.Do([this] {
    OpenToMeasure();
    RunSweep(1e9, 1.5e9, 1e8);
    // The second time with the array of the first: a proxy, unlike the driver, puts the new values
    // into the array that it is given.
    for (int fetch = 0; fetch < 2; ++fetch) {
      ASSERT_EQ(surface_.channel->FetchData(&surface_.array, &surface_.number, &surface_.number_2),
                S_OK);
      EXPECT_EQ(ValuesOf(surface_.array).size(), 6U);
      EXPECT_EQ(surface_.number, 1e9);
      EXPECT_EQ(surface_.number_2, 1e8);
    }
    SafeArrayDestroy(surface_.array);
  });
}

TEST_P(Marshalling, CarriesFailuresAndCodesOfSuccess) {
  away_.Do([this] {
    EXPECT_EQ(surface_.root->Close(), kNotConnectedCode);
    EXPECT_EQ(surface_.sync_generator->put_Width(1e-6), kNoSessionCode);
    EXPECT_EQ(surface_.utility->Reset(), kMethodCode);
    Open();
    instrument_.InjectFault(simulator::Fault::Refuse(0, kRefusal, 1));
    EXPECT_EQ(surface_.rf->put_Frequency(2e9), kRefusal);
    LONG code = 0;
    BSTR text = Text("passed in").Detach();
    EXPECT_EQ(surface_.utility->ErrorQuery(&code, &text), S_OK);
    EXPECT_EQ(code, kRefusal);
    EXPECT_EQ(TakeText(std::exchange(text, nullptr)), "-321");
    do {
      EXPECT_EQ(surface_.utility->ErrorQuery(&code, &text), S_OK);
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
