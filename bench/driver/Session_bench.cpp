// What a client waits for: a session, a trace, many of both at once.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <chrono>
#include <functional>
#include <list>
#include <stdexcept>
#include <thread>
#include <vector>

#include "bench/Samples.h"
#include "bench/driver/Driver.h"
#include "bench/driver/Park.h"
#include "bench/link/Loopback.h"

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr double kStart = 1e9;  // Hz
constexpr double kStep = 1e6;

void Require(bool good, const char* what) {
  if (!good) throw std::runtime_error(what);
}

/// A frequency sweep of so many points, each so long (seconds), that a software trigger starts.
void Prepare(const bench::Driver& driver, int points, double dwell) {
  Require(driver.frequency_step->ConfigureStartStop(kStart, kStart + kStep * (points - 1),
                                                    ZentrelK4NFrequencyStepScalingLinear,
                                                    kStep) == S_OK &&
              driver.frequency_step->put_Dwell(dwell) == S_OK &&
              driver.sweep->Configure(ZentrelK4NSweepModeFrequencyStep,
                                      ZentrelK4NSweepTriggerSourceSoftware) == S_OK &&
              driver.rf->put_OutputEnabled(VARIANT_TRUE) == S_OK,
          "no sweep");
}

/// Returns as soon as the status reads complete.
void Measure(const bench::Driver& driver) {
  Require(driver.acquisition->Initiate() == S_OK, "not started");
  auto status = ZentrelK4NAcquisitionStatusInProgress;
  while (status == ZentrelK4NAcquisitionStatusInProgress) driver.acquisition->get_Status(&status);
  Require(status == ZentrelK4NAcquisitionStatusComplete, "not measured");
}

void Fetch(const bench::Driver& driver) {
  SAFEARRAY* trace = nullptr;
  double initial_x = 0.0;
  double increment = 0.0;
  Require(driver.channel->FetchData(&trace, &initial_x, &increment) == S_OK, "not fetched");
  SafeArrayDestroy(trace);
}

/// From the last byte of a block on the wire to the end of the call that reads complete.
void BlockToStatus(benchmark::State& state) {
  const bench::Park park(1);
  Tap tap(park.port(0));
  bench::Samples delays;
  {
    const bench::Driver driver;
    driver.Open(tap.ResourceName());
    Prepare(driver, 401, 50e-6);
    for ([[maybe_unused]] auto _ : state) {
      Measure(driver);
      delays.Add(Milliseconds(Clock::now() - tap.LastAnswer()).count());
    }
  }
  state.counters["median_ms"] = delays.Median();
  state.counters["p99_ms"] = delays.Quantile(0.99);
}
BENCHMARK(BlockToStatus)->Iterations(400)->UseRealTime();

/// The whole way from no session to the first trace; beside it, what of that are waits that
/// nothing can shorten: the pause of Initialize, the worker's first look for a stop request, the
/// sweep.
void InitializeToTrace(benchmark::State& state) {
  constexpr int kPoints = 201;
  constexpr double kDwell = 200e-6;
  constexpr double kFixed = 20.0 + 5.0 + kPoints * kDwell * 1000.0;
  const bench::Park park(1);
  bench::Samples times;
  for ([[maybe_unused]] auto _ : state) {
    const bench::Driver driver;
    const auto start = Clock::now();
    driver.Open(ResourceNameOf(park.port(0)));
    Prepare(driver, kPoints, kDwell);
    Measure(driver);
    Fetch(driver);
    times.Add(Milliseconds(Clock::now() - start).count());
  }
  state.counters["total_ms"] = times.Median();
  state.counters["fixed_ms"] = kFixed;
  state.counters["over_ms"] = times.Median() - kFixed;
}
BENCHMARK(InitializeToTrace)->Iterations(15)->UseRealTime();

/// One member call, which bench/python does the same way: what a client's language adds.
template <typename Call>
void MemberCalls(benchmark::State& state, const Call& call) {
  const bench::Park park(1);
  const bench::Driver driver;
  driver.Open(ResourceNameOf(park.port(0)));
  Prepare(driver, 5461, 0.0);
  Measure(driver);
  for ([[maybe_unused]] auto _ : state) call(driver);
}
void ReadProperty(benchmark::State& state) {
  MemberCalls(state, [](const bench::Driver& driver) {
    double frequency = 0.0;
    Require(driver.rf->get_Frequency(&frequency) == S_OK, "not read");
  });
}
BENCHMARK(ReadProperty)->UseRealTime();
void PutProperty(benchmark::State& state) {
  MemberCalls(state, [](const bench::Driver& driver) {
    Require(driver.rf->put_Level(-10.0) == S_OK, "refused");
  });
}
BENCHMARK(PutProperty)->UseRealTime();
void FetchTrace(benchmark::State& state) { MemberCalls(state, Fetch); }
BENCHMARK(FetchTrace)->UseRealTime();

std::size_t HeapInUse() { return mallinfo2().uordblks + mallinfo2().hblkhd; }

/// Runs a part of the work for each session at once.
void ForEach(std::list<bench::Driver>& drivers,
             const std::function<void(bench::Driver&, std::size_t)>& work) {
  std::vector<std::jthread> threads;
  for (bench::Driver& driver : drivers) {
    threads.emplace_back([&, index = threads.size()] { work(driver, index); });
  }
}

/// Sessions that set a level, measure and fetch, each in a thread of its own.
void Sessions(benchmark::State& state) {
  constexpr int kRounds = 20;
  const auto count = static_cast<std::size_t>(state.range(0));
  const bench::Park park(count);
  const std::size_t before = HeapInUse();
  std::list<bench::Driver> drivers(count);
  ForEach(drivers, [&](bench::Driver& driver, std::size_t index) {
    driver.Open(ResourceNameOf(park.port(index)));
    Prepare(driver, 101, 0.0);
    Measure(driver);
  });
  for ([[maybe_unused]] auto _ : state) {
    ForEach(drivers, [](bench::Driver& driver, std::size_t /*index*/) {
      for (int i = 0; i < kRounds; ++i) {
        Require(driver.rf->put_Level(-10.0) == S_OK, "refused");
        Measure(driver);
        Fetch(driver);
      }
    });
  }
  state.SetItemsProcessed(state.iterations() * kRounds * static_cast<std::int64_t>(count));
  state.counters["kib_a_session"] =
      static_cast<double>(HeapInUse() - before) / 1024.0 / static_cast<double>(count);
}
BENCHMARK(Sessions)->Arg(1)->Arg(8)->Arg(64)->Iterations(3)->UseRealTime();

}  // namespace
