#include "tools/SimulatedDetectorFile.h"

#include <cmath>
#include <cstdint>

#include "measurement/MatrixFile.h"
#include "measurement/SimpleMatrix.h"
#include "simulator/Detector.h"

namespace {

constexpr const char* kHeader =
    "#VERSION 3\n"
    "!Detector characteristic of the simulated instrument, for its channels A, B and R.\n"
    "!First line: frequencies, MHz. First column: detector readings. Values: level, dBm.\n";

// Far finer than the table's own 0.02 dB, and coarse enough that the last bit of a system's
// mathematical functions does not show in the file.
constexpr int kReadingDigits = 8;
constexpr double kStepsPerDecibel = 1e4;

double RoundReading(double reading) {
  const double scale = std::pow(10.0, kReadingDigits - 1 - std::floor(std::log10(reading)));
  return std::round(reading * scale) / scale;
}

CSimpleMatrix ToMatrix(const simulator::DetectorTable& table) {
  const auto columns = static_cast<std::uint32_t>(table.frequencies.size());
  const auto rows = static_cast<std::uint32_t>(table.readings.size());
  CSimpleMatrix matrix;
  // All items lie inside the matrix: nothing here can fail.
  Discard(matrix.Resize(columns + 1, rows + 1));
  for (std::uint32_t column = 0; column < columns; ++column) {
    Discard(matrix.SetItem(column + 1, 0, table.frequencies[column]));
  }
  for (std::uint32_t row = 0; row < rows; ++row) {
    Discard(matrix.SetItem(0, row + 1, RoundReading(table.readings[row])));
    for (std::uint32_t column = 0; column < columns; ++column) {
      Discard(
          matrix.SetItem(column + 1, row + 1,
                         std::round(table.At(row, column) * kStepsPerDecibel) / kStepsPerDecibel));
    }
  }
  return matrix;
}

}  // namespace

Status WriteSimulatedDetectorFile(const std::string& path) {
  return measurement::SaveMatrixFile(ToMatrix(simulator::DetectorTable::Make()), path, kHeader,
                                     measurement::kMatrixFileDigest);
}
