// make_detector_file FILE: writes the detector file of the simulated instrument
// (data/calibr20.det).
#include <iostream>

#include "tools/SimulatedDetectorFile.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_detector_file FILE\n";
    return 2;
  }
  if (WriteSimulatedDetectorFile(argv[1]) != Status::kOk) {
    std::cerr << "make_detector_file: cannot write " << argv[1] << "\n";
    return 1;
  }
  return 0;
}
