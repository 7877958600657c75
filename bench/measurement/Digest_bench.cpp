// The digest of a 64 MiB file, against rhash's on the same file. Both figures are processor time:
// rhash's that of its process.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "measurement/Gost341194.h"

using namespace measurement;

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX wants it declared

namespace {

constexpr std::size_t kSize = std::size_t{64} << 20;

/// Random bytes in a file that is there while the benchmark runs.
class RandomFile {
 public:
  RandomFile() : path_((std::filesystem::temp_directory_path() / "digest_bench").string()) {
    std::mt19937_64 random(1);
    std::string bytes(kSize, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~RandomFile() { std::filesystem::remove(path_); }
  RandomFile(const RandomFile&) = delete;
  RandomFile& operator=(const RandomFile&) = delete;

  [[nodiscard]] std::string& path() { return path_; }

 private:
  std::string path_;
};

void BM_DigestFile(benchmark::State& state) {
  RandomFile file;
  for ([[maybe_unused]] auto _ : state) {
    std::ifstream stream(file.path(), std::ios::binary);
    std::string piece(std::size_t{1} << 16, '\0');
    Gost341194 hash;
    while (stream.read(piece.data(), static_cast<std::streamsize>(piece.size()))) {
      hash.Update(piece);
    }
    benchmark::DoNotOptimize(hash.Finish());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kSize));
}
BENCHMARK(BM_DigestFile)->Unit(benchmark::kMillisecond);

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

void BM_RhashFile(benchmark::State& state) {
  RandomFile file;
  std::string program = "rhash";
  std::string option = "--gost94";
  std::array<char*, 4> arguments = {program.data(), option.data(), file.path().data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", 1, 0);  // 1: standard output, O_WRONLY
  for ([[maybe_unused]] auto _ : state) {
    pid_t process = 0;
    int status = -1;
    rusage used{};
    if (posix_spawnp(&process, "rhash", &actions, nullptr, arguments.data(), environ) != 0 ||
        wait4(process, &status, 0, &used) != process || status != 0) {
      state.SkipWithError("rhash cannot be run");
      break;
    }
    state.SetIterationTime(Seconds(used.ru_utime) + Seconds(used.ru_stime));
  }
  posix_spawn_file_actions_destroy(&actions);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kSize));
}
BENCHMARK(BM_RhashFile)->Unit(benchmark::kMillisecond)->UseManualTime();

}  // namespace
