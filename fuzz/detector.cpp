// Detector files: what is loaded can be looked up anywhere.
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

#include "fuzz/Fuzz.h"
#include "measurement/DetectorFile.h"

using namespace measurement;

namespace {

/// A file for the length of the process.
struct Scratch {
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
  std::string path = (std::filesystem::temp_directory_path() /
                      ("zk4n_fuzz_" + std::to_string(std::random_device()()) + ".det"))
                         .string();
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Scratch scratch;
  std::ofstream(scratch.path, std::ios::binary) << fuzz::Input(data, size).text();
  CSimpleMatrix matrix;
  std::string header;
  const Status loaded = LoadDetectorFile(matrix, scratch.path, &header);
  std::shared_ptr<const DetectorTable> table;
  fuzz::Require(LoadDetectorTable(scratch.path, table) == loaded);
  fuzz::Require((loaded == Status::kOk) == (table != nullptr));
  if (table == nullptr) return 0;
  ConvertLevelAxisToLog10(matrix);
  for (const double x : {0.0, -1.0, 1e300, 1234.5, std::nan(""), HUGE_VAL}) {
    const double value = table->Interpolate(x, x);
    const double expected = InterpolateDetector(matrix, x, x);
    fuzz::Require(value == expected || (std::isnan(value) && std::isnan(expected)));
  }
  return 0;
}
