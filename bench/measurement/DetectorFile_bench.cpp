// Loading of a large detector file, against a bare reader of its numbers and the digest alone.
#include <benchmark/benchmark.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/measurement/BenchTable.h"
#include "measurement/DetectorFile.h"
#include "measurement/Gost341194.h"
#include "measurement/MatrixFile.h"

using namespace measurement;

namespace {

/// A table of 2,001 frequencies and 401 levels in a file of the given version.
class BenchFile {
 public:
  explicit BenchFile(int version)
      : path_((std::filesystem::temp_directory_path() /
               ("measurement_bench" + std::to_string(version) + ".det"))
                  .string()) {
    SaveMatrixFile(BenchTable(2001, 401), path_, "#VERSION " + std::to_string(version),
                   kMatrixFileDigest);
  }
  ~BenchFile() { std::filesystem::remove(path_); }
  BenchFile(const BenchFile&) = delete;
  BenchFile& operator=(const BenchFile&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::int64_t Size() const {
    return static_cast<std::int64_t>(std::filesystem::file_size(path_));
  }
  [[nodiscard]] std::string Text() const {
    std::string text(static_cast<std::size_t>(Size()), '\0');
    std::ifstream(path_, std::ios::binary).read(text.data(), Size());
    return text;
  }

 private:
  std::string path_;
};

void BM_ReadNumbersBare(benchmark::State& state) {
  const BenchFile file(0);
  for ([[maybe_unused]] auto _ : state) {
    const std::string text = file.Text();
    std::vector<double> numbers;
    const char* position = text.data() + text.find('\n');
    const char* const end = text.data() + text.size();
    while (position != end) {
      double value = 0;
      const auto [stop, error] = std::from_chars(position, end, value);
      if (error == std::errc()) {
        numbers.push_back(value);
        position = stop;
      } else {
        ++position;
      }
    }
    benchmark::DoNotOptimize(numbers.data());
  }
  state.SetBytesProcessed(state.iterations() * file.Size());
}
BENCHMARK(BM_ReadNumbersBare)->Unit(benchmark::kMillisecond);

void BM_LoadDetectorFile(benchmark::State& state) {
  const BenchFile file(static_cast<int>(state.range(0)));
  for ([[maybe_unused]] auto _ : state) {
    CSimpleMatrix matrix;
    if (LoadDetectorFile(matrix, file.Path(), nullptr) != Status::kOk) {
      state.SkipWithError("not loaded");
      return;
    }
  }
  state.SetBytesProcessed(state.iterations() * file.Size());
}
BENCHMARK(BM_LoadDetectorFile)->Arg(0)->Arg(3)->Unit(benchmark::kMillisecond);

/// The digest alone, of the same file's bytes.
void BM_DigestDetectorFile(benchmark::State& state) {
  const BenchFile file(3);
  const std::string text = file.Text();
  for ([[maybe_unused]] auto _ : state) {
    Gost341194 hash;
    hash.Update(text);
    benchmark::DoNotOptimize(hash.Finish());
  }
  state.SetBytesProcessed(state.iterations() * file.Size());
}
BENCHMARK(BM_DigestDetectorFile)->Unit(benchmark::kMillisecond);

}  // namespace
