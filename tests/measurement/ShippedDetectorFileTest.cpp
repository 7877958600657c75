#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "measurement/DetectorFile.h"
#include "simulator/Detector.h"
#include "tests/measurement/TempFile.h"
#include "tests/platform/ResultCode.h"
#include "tools/SimulatedDetectorFile.h"

using namespace measurement;

namespace {

const std::string kShipped = std::filesystem::path(SHIPPED_DETECTOR_FILE).string();

std::string WithoutCarriageReturns(std::istream&& file) {
  std::string text{std::istreambuf_iterator<char>(file), {}};
  std::erase(text, '\r');
  return text;
}

TEST(ShippedDetectorFile, IsThatOfTheSimulatedDetectors) {
  const TempFile fresh;
  ASSERT_EQ(WriteSimulatedDetectorFile(fresh.Path()), Status::kOk);
  EXPECT_EQ(WithoutCarriageReturns(std::ifstream(kShipped, std::ios::binary)), fresh.Content())
      << "run make_detector_file data/calibr20.det";
}

TEST(ShippedDetectorFile, GivesTheLevelAtTheDetector) {
  std::shared_ptr<const DetectorTable> table;
  ASSERT_EQ(LoadDetectorTable(kShipped, table), Status::kOk);
  for (double level = simulator::kDetectorMinLevel; level <= simulator::kDetectorMaxLevel;
       level += 0.37) {
    for (double frequency = simulator::kDetectorMinFrequency;
         frequency <= simulator::kDetectorMaxFrequency; frequency += 133e6) {
      const double reading = simulator::DetectorCurve::Reading(level, frequency);
      ASSERT_NEAR(table->Interpolate(frequency / 1e6, std::log10(reading)), level, 0.02)
          << frequency << " Hz";
    }
  }
}

}  // namespace
