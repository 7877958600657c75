// Runs a fuzz target over kept inputs: files, and all files of folders. Each is run as it is and
// repeated to a megabyte. Usage: TARGET [--most-megabytes N] FILE|FOLDER...
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"

namespace {

namespace fs = std::filesystem;
constexpr std::size_t kLargeInput = 1 << 20;

std::vector<fs::path> FilesOf(const fs::path& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(path)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

void Run(const fs::path& path) {
  std::printf("%s\n", path.filename().string().c_str());
  std::fflush(stdout);  // the last line tells the input that ended the program
  std::ifstream file(path, std::ios::binary);
  const std::string content(std::istreambuf_iterator<char>(file), {});
  fuzz::Require(file.good() || file.eof());
  const auto run = [](const std::string& bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  };
  run(content);
  // The whole repeated, then its end alone, as of a list that goes on.
  for (const std::size_t repeated : {content.size(), std::min<std::size_t>(content.size(), 2)}) {
    std::string large = content;
    large.reserve(kLargeInput);
    while (repeated != 0 && large.size() < kLargeInput) {
      large.append(content, content.size() - repeated, kLargeInput - large.size());
    }
    run(large);
  }
}

/// The most memory that the process ever had, where the system tells it; otherwise 0.
long PeakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes / 1024;
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  int inputs = 0;
  long most = 0;
  for (int i = 1; i < count; ++i) {
    if (arguments[i] == std::string_view("--most-megabytes") && i + 1 < count) {
      most = std::atol(arguments[++i]);
      continue;
    }
    for (const fs::path& path : FilesOf(arguments[i])) {
      Run(path);
      ++inputs;
    }
  }
  const long peak = PeakMegabytes();
  std::printf("%d inputs, also repeated to a megabyte; peak memory %ld MB\n", inputs, peak);
  if (inputs == 0 || (most != 0 && peak > most)) {
    std::printf("FAILED: %s\n", inputs == 0 ? "no inputs" : "too much memory");
    return 1;
  }
  return 0;
}
