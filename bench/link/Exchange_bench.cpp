// One setting on its way to the instrument and back, layer by layer: bare sockets, the VISA
// library, the instrument model, the COM member. The bytes on the wire are the same everywhere.
#include <benchmark/benchmark.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "K4NHardWare/CommandExchanger.h"
#include "K4NHardWare/D3THardWare.h"
#include "bench/Samples.h"
#include "bench/driver/Driver.h"
#include "bench/link/Loopback.h"
#include "platform/os/Module.h"
#include "visa/Visa.h"

using namespace k4n;

namespace {

constexpr double kLevel = -10.0;

void Require(bool good, const char* what) {
  if (!good) throw std::runtime_error(what);
}

/// The message that tells an instrument of the newest generation its level.
class LevelMessage {
 public:
  LevelMessage() {
    constexpr std::array<std::uint8_t, 10> kHeader = {0xAA, 0x55, 3, 0, 0, 0x80, 32, 0, 5, 0x62};
    std::copy(kHeader.begin(), kHeader.end(), bytes_.begin());
  }
  std::span<std::uint8_t> all() { return bytes_; }
  std::span<std::uint8_t> header() { return all().first(kHeaderSize); }
  std::span<std::uint8_t> body() { return all().subspan(kHeaderSize); }

 private:
  std::array<std::uint8_t, kHeaderSize + 32> bytes_{};
};

class BareLayer {
 public:
  explicit BareLayer(const EchoInstrument& instrument) : client_(instrument.port()) {}
  void operator()() { client_.Exchange(message_.all()); }

 private:
  BareClient client_;
  LevelMessage message_;
};

/// The same four calls, to the VISA library.
class VisaLayer {
 public:
  explicit VisaLayer(const EchoInstrument& instrument, const char* module = ZK_VISA_MODULE) {
    Require(module_.Load(module), "no VISA library");
    read_ = module_.FunctionOf<decltype(viRead)>("viRead");
    write_ = module_.FunctionOf<decltype(viWrite)>("viWrite");
    module_.FunctionOf<decltype(viOpenDefaultRM)>("viOpenDefaultRM")(&manager_);
    Require(module_.FunctionOf<decltype(viOpen)>("viOpen")(
                manager_, instrument.ResourceName().c_str(), VI_EXCLUSIVE_LOCK | VI_LOAD_CONFIG,
                1000, &session_) == 0,
            "no VISA session");
  }
  ~VisaLayer() { module_.FunctionOf<decltype(viClose)>("viClose")(manager_); }
  VisaLayer(const VisaLayer&) = delete;
  VisaLayer& operator=(const VisaLayer&) = delete;

  void operator()() {
    Require(Write(message_.header()) && Write(message_.body()) && Read(message_.header()) &&
                Read(message_.body()),
            "VISA exchange failed");
  }

 private:
  bool Write(std::span<const std::uint8_t> bytes) {
    ViUInt32 count = 0;
    return write_(session_, bytes.data(), static_cast<ViUInt32>(bytes.size()), &count) >= 0;
  }
  bool Read(std::span<std::uint8_t> bytes) {
    ViUInt32 count = 0;
    return read_(session_, bytes.data(), static_cast<ViUInt32>(bytes.size()), &count) >= 0;
  }

  os::Module module_;
  decltype(&viRead) read_;
  decltype(&viWrite) write_;
  ViSession manager_ = 0;
  ViSession session_ = 0;
  LevelMessage message_;
};

/// As above, and each call is a line of a trace. It has a copy of the library for itself: one that
/// traces anything looks for each call whether it is to be traced.
class TracedLayer {
 public:
  explicit TracedLayer(const EchoInstrument& instrument) {
    const std::string settings = File("zevisa.ini");
    std::ofstream(settings) << "[*]\ntrace = " << File("visa.trace") << '\n';
    setenv("ZEVISA_CONFIG", settings.c_str(), 1);
    layer_.emplace(instrument, ZK_VISA_MODULE_COPY);
    unsetenv("ZEVISA_CONFIG");
    (*this)();
    Require(std::filesystem::file_size(File("visa.trace")) > 0, "no trace");
  }
  void operator()() { (*layer_)(); }

 private:
  /// Removed with its folder.
  struct Folder {
    Folder() { std::filesystem::create_directories(path); }
    ~Folder() { std::filesystem::remove_all(path); }
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("zk4n-bench-" + std::to_string(getpid()));
  };
  [[nodiscard]] std::string File(const char* name) const { return folder_.path / name; }

  Folder folder_;
  std::optional<VisaLayer> layer_;
};

class ModelLayer {
 public:
  explicit ModelLayer(const EchoInstrument& instrument)
      : exchanger_(std::make_unique<uDevice::Interface>(instrument.ResourceName())),
        model_(exchanger_) {
    (*this)();  // finds out the form of the parameter
  }
  void operator()() {
    Require(model_.SetOutputLevel(settings_, level_) == Status::kOk, "the model refuses");
  }

 private:
  CommandExchanger exchanger_;
  D3THardWare model_;
  LevelSettings settings_;
  double level_ = kLevel;
};

class ComLayer {
 public:
  explicit ComLayer(const EchoInstrument& instrument) {
    driver_.Open(instrument.ResourceName());
    (*this)();
  }
  void operator()() { Require(driver_.rf->put_Level(kLevel) == S_OK, "the driver refuses"); }

 private:
  bench::Driver driver_;
};

/// Microseconds that a layer's exchange takes, a few of them averaged.
template <typename Layer>
double Time(Layer& layer) {
  constexpr int kExchanges = 20;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kExchanges; ++i) layer();
  const std::chrono::duration<double, std::micro> passed = std::chrono::steady_clock::now() - start;
  return passed.count() / kExchanges;
}

/// Keeps the calling thread, and the threads that it starts, on one processor.
class Placement {
 public:
  explicit Placement(int processor) {
    sched_getaffinity(0, sizeof before_, &before_);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(processor), &one);
    Require(sched_setaffinity(0, sizeof one, &one) == 0, "the processor is not ours");
  }
  ~Placement() { sched_setaffinity(0, sizeof before_, &before_); }
  Placement(const Placement&) = delete;
  Placement& operator=(const Placement&) = delete;

 private:
  cpu_set_t before_{};
};

/// The first processors that the program may run on, the last one repeated.
std::array<int, 2> TwoProcessors() {
  cpu_set_t all;
  sched_getaffinity(0, sizeof all, &all);
  std::array<int, 2> found{};
  std::size_t count = 0;
  for (int i = 0; i < CPU_SETSIZE && count < found.size(); ++i) {
    if (CPU_ISSET(static_cast<std::size_t>(i), &all)) found[count++] = i;
  }
  if (count == 1) found[1] = found[0];
  return found;
}

using Instruments = std::array<EchoInstrument, 5>;
std::unique_ptr<Instruments> InstrumentsOn(int processor) {
  const Placement there(processor);
  return std::make_unique<Instruments>();
}

/// The layers take turns, so that whatever else the machine does meets them all; each has an
/// instrument of its own. Where the system places the threads of both ends can decide more than
/// what they do: the client has a processor, and the instruments have it, too, or have another.
void Exchange(benchmark::State& state) {
  const std::array<int, 2> processors = TwoProcessors();
  const auto instruments = InstrumentsOn(processors[static_cast<std::size_t>(state.range(0)) - 1]);
  const Placement here(processors[0]);
  BareLayer bare((*instruments)[0]);
  VisaLayer visa((*instruments)[1]);
  ModelLayer model((*instruments)[2]);
  ComLayer com((*instruments)[3]);
  TracedLayer traced((*instruments)[4]);
  std::array<bench::Samples, 5> times;
  for ([[maybe_unused]] auto _ : state) {
    times[0].Add(Time(bare));
    times[1].Add(Time(visa));
    times[2].Add(Time(model));
    times[3].Add(Time(com));
    times[4].Add(Time(traced));
  }
  state.counters["bare_us"] = times[0].Median();
  state.counters["visa_us"] = times[1].Median();
  state.counters["model_us"] = times[2].Median();
  state.counters["com_us"] = times[3].Median();
  state.counters["traced_us"] = times[4].Median();
}
BENCHMARK(Exchange)->Arg(1)->Arg(2)->Iterations(200)->UseRealTime();

}  // namespace
