// The simulated instrument on a command line.
#pragma once

#include <CLI/App.hpp>

#include "simulator/Options.h"

namespace zk4n {

/// Adds what an instrument may be, its device under test and its faults. `options` holds the
/// defaults, takes the values and must outlive the parsing. With `needed`, the options are refused
/// without that one.
void AddInstrumentOptions(CLI::App& command, simulator::Options& options,
                          CLI::Option* needed = nullptr);

/// Throws UsageError for options that describe no instrument.
void RequireInstrument(const simulator::Options& options);

}  // namespace zk4n
