// What a detector calibration file holds, and whether the driver takes it.
#pragma once

#include <string>
#include <vector>

#include "measurement/DetectorFile.h"
#include "measurement/SimpleMatrix.h"

namespace zk4n {

/// Why a file is not good, in a few words; empty for none.
std::string FaultText(const measurement::DetectorFile& file);

/// A file read, and taken apart.
class DetectorCheck {
 public:
  /// Reads the file (its name is UTF-8), which may be missing or anything.
  explicit DetectorCheck(std::string file);

  /// True when the driver loads the file, and its look-ups have a meaning.
  [[nodiscard]] bool IsGood() const;
  /// Some lines for people.
  [[nodiscard]] std::string AsText() const;
  /// One line: file, status, version, columns and rows as counted in the file, the digest of its
  /// content and the one that it states; null for what there is not.
  [[nodiscard]] std::string AsJson() const;

 private:
  /// What keeps a table that loads from being of use.
  [[nodiscard]] std::string AxisFault() const;

  std::string name_;
  measurement::DetectorFile file_;
  std::vector<double> frequencies_;  ///< MHz
  std::vector<double> levels_;       ///< linear
};

}  // namespace zk4n
