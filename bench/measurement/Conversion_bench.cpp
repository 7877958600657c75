// Conversion of a block, against the same formula written down straight: one look-up and one
// logarithm a reading.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "bench/measurement/BenchTable.h"
#include "measurement/DetectorFile.h"
#include "measurement/TraceConversion.h"

using namespace measurement;

namespace {

struct Place {
  std::size_t first;
  std::size_t second;
  double weight;
};

/// Search on an ascending axis, from a proportional first guess.
Place Find(const std::vector<double>& axis, double x) {
  const std::size_t last = axis.size() - 1;
  if (x >= axis[last]) return {last, last, 0.5};
  if (x <= axis[0]) return {0, 0, 0.5};
  const double nearest = static_cast<double>(last) * (x - axis[0]) / (axis[last] - axis[0]) + 0.5;
  auto k = static_cast<std::size_t>(nearest);
  while (axis[k] > x) --k;
  while (x >= axis[k + 1]) ++k;
  return {k, k + 1, (axis[k + 1] - x) / (axis[k + 1] - axis[k])};
}

struct ReferenceTable {
  explicit ReferenceTable(const CSimpleMatrix& matrix) {
    for (std::uint32_t c = 1; c < matrix.GetCols(); ++c) {
      frequencies.push_back(matrix.GetItem(c, 0));
      for (std::uint32_t r = 1; r < matrix.GetRows(); ++r) values.push_back(matrix.GetItem(c, r));
    }
    for (std::uint32_t r = 1; r < matrix.GetRows(); ++r) levels.push_back(matrix.GetItem(0, r));
  }
  [[nodiscard]] double Value(double frequency, double level) const {
    const Place f = Find(frequencies, frequency);
    const Place p = Find(levels, level);
    const auto at = [this](std::size_t i, std::size_t j) { return values[i * levels.size() + j]; };
    return f.weight * (p.weight * at(f.first, p.first) + (1 - p.weight) * at(f.first, p.second)) +
           (1 - f.weight) *
               (p.weight * at(f.second, p.first) + (1 - p.weight) * at(f.second, p.second));
  }
  std::vector<double> frequencies;
  std::vector<double> levels;
  std::vector<double> values;
};

/// A sweep of three noisy channels over the whole range.
struct Sweep {
  explicit Sweep(std::size_t points) : block(points * kBytesPerPoint) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> noise(0.8, 1.2);
    for (std::size_t i = 0; i < 3 * points; ++i) {
      const std::size_t point = i / 3;
      const double angle = 6.28 * static_cast<double>(point) / static_cast<double>(points);
      const double reading =
          std::pow(10.0, 3 + 2 * std::sin(angle) - 0.1 * static_cast<double>(i % 3)) *
          noise(random);
      const auto bits = static_cast<std::uint32_t>(static_cast<std::int32_t>(reading));
      for (std::size_t byte = 0; byte < 4; ++byte) {
        block[4 * i + byte] = static_cast<std::uint8_t>(bits >> (8 * byte));
      }
    }
    plan.mode = FrequencyPlan::Mode::kStep;
    plan.start = 10e6;
    plan.step = 19.99e9 / static_cast<double>(points - 1);
  }
  std::vector<std::uint8_t> block;
  FrequencyPlan plan;
};

CSimpleMatrix LogarithmicTable() {
  CSimpleMatrix matrix = BenchTable(201, 65);
  ConvertLevelAxisToLog10(matrix);
  return matrix;
}

void ConvertStraight(const Sweep& sweep, const std::array<ChannelTransform, 3>& transforms,
                     const ReferenceTable& table, std::vector<double>& trace) {
  const std::size_t points = sweep.block.size() / kBytesPerPoint;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    const ChannelTransform& transform = transforms[channel];
    for (std::size_t i = 0; i < points; ++i) {
      double frequency = sweep.plan.start + sweep.plan.step * static_cast<double>(i);
      frequency = (frequency * transform.multiplier / transform.divider + transform.offset) / 1e6;
      std::int32_t reading = 0;
      std::memcpy(&reading, &sweep.block[(3 * i + channel) * 4], sizeof reading);
      const double scaled = static_cast<double>(reading) / 256.0;
      const double level = scaled <= 0.001 ? -3.0 : std::log10(scaled);
      trace[channel * points + i] = table.Value(frequency, level);
    }
  }
}

void CountReadings(benchmark::State& state, std::size_t points) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(3 * points));
}

void BM_ConvertStraight(benchmark::State& state) {
  const auto points = static_cast<std::size_t>(state.range(0));
  const Sweep sweep(points);
  const ReferenceTable table(LogarithmicTable());
  std::vector<double> trace(3 * points);
  for ([[maybe_unused]] auto _ : state) {
    ConvertStraight(sweep, {}, table, trace);
    benchmark::DoNotOptimize(trace.data());
    benchmark::ClobberMemory();
  }
  CountReadings(state, points);
}
BENCHMARK(BM_ConvertStraight)->Arg(10001)->Arg(100001);

void BM_ConvertBlock(benchmark::State& state) {
  const auto points = static_cast<std::size_t>(state.range(0));
  const Sweep sweep(points);
  const auto table = std::make_shared<const DetectorTable>(LogarithmicTable());
  const std::array<ChannelCalibration, 3> channels = {
      ChannelCalibration{{}, table}, ChannelCalibration{{}, table}, ChannelCalibration{{}, table}};
  TraceMatrix trace;
  for ([[maybe_unused]] auto _ : state) {
    ConvertBlock({sweep.block}, sweep.plan, channels, trace);
    benchmark::ClobberMemory();
  }
  CountReadings(state, points);

  // The driver's logarithm may differ from the library's in the last place, and the interpolation
  // carries that on.
  constexpr double kCarried = 1e-12;
  std::vector<double> expected(3 * points);
  ConvertStraight(sweep, {}, ReferenceTable(LogarithmicTable()), expected);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const double value = trace.Row(static_cast<std::int32_t>(i / points))[i % points];
    if (!(std::abs(value - expected[i]) <= kCarried * std::max(1.0, std::abs(expected[i])))) {
      state.SkipWithError("differs from the straight conversion");
      return;
    }
  }
}
BENCHMARK(BM_ConvertBlock)->Arg(10001)->Arg(100001);

}  // namespace
