// The detector file that matches the simulated instrument.
#pragma once

#include <string>

#include "status/Status.h"

/// Writes the simulated detectors' characteristic as a signed version 3 detector file. The same
/// bytes on every system. Returns as SaveMatrixFile.
Status WriteSimulatedDetectorFile(const std::string& path);
