// What instrument is simulated, and where it listens. Every member has a default: an analyser from
// 10 MHz to 20 GHz with all its options, and a band-pass connected to it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "simulator/DeviceUnderTest.h"
#include "simulator/Faults.h"

namespace simulator {

enum class InstrumentKind : std::uint16_t {
  kGenerator = 1,  ///< no detectors: its data blocks hold no points
  kDetectors = 2,  ///< readings come in counts of 5e6 / 2^24
  kAnalyser = 18,
};

/// The newest form of the frequency command; older ones are understood as well.
enum class FrequencyForm {
  kNarrow,       ///< start, points, step of 4 bytes; the upper limit is at most 4.001 GHz
  kWide,         ///< start, points, step of 6 bytes
  kFourElement,  ///< start, points, step, stop of 6 bytes
};

/// In the order in which a person reads them; there are few of these, and their size is no matter.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct Options {
  // Where it listens.
  std::string address = "127.0.0.1";  ///< of the interface; "0.0.0.0" for all
  std::uint16_t port = 0;             ///< 0: any free one
  std::size_t max_connections = 8;    ///< further ones are closed at once

  // What it is.
  InstrumentKind kind = InstrumentKind::kAnalyser;
  std::string serial_number = "1101190042";
  std::string type = "K4N-20";
  bool serial_number_query = true;           ///< otherwise the serial number is only in its file
  std::string manufactured = "17.03.2019";   ///< day.month.year, as the identity text shows it
  std::string dsp_program = "25.09.2018";    ///< the same
  std::string fpga_firmware = "04.06.2018";  ///< the same
  /// Files beside \FRAM\SERIAL.TXT and \FRAM\TYPE.TXT, which follow from the above: content by
  /// path, in Windows-1251. An entry with one of the two names replaces that file; see missing.
  std::map<std::string, std::string> files = {};
  std::vector<std::string> missing_files = {};  ///< paths of files that are not there

  // Frequency.
  double min_frequency = 10e6;  ///< Hz
  double max_frequency = 20e9;  ///< Hz
  FrequencyForm frequency_form = FrequencyForm::kFourElement;

  // Level.
  double min_level = -70.0;        ///< dBm
  double max_level = 20.0;         ///< dBm
  double level_resolution = 0.01;  ///< dB
  double initial_level = -60.0;    ///< dBm, when the instrument is switched on
  bool output_at_start = false;    ///< RF output on when the instrument is switched on
  /// Generation of the power commands, 0 to 5. One of generation 0 answers its power command only
  /// from the second time on in a connection.
  int power_variant = 5;
  std::uint32_t attenuator_mode = 4;  ///< 2 to 5; 0: the instrument has no modes

  // Triggers, pulses, references.
  int trigger_groups = 2;                  ///< 1 or 2
  bool pulse_modulator = true;             ///< otherwise the pulse train is unknown to it
  bool reference_frequency = true;         ///< otherwise the reference can only be switched
  std::uint32_t time_resolution = 10;      ///< ns, of pulses and of the sync generator
  double min_reference_frequency = 1e6;    ///< Hz
  double max_reference_frequency = 250e6;  ///< Hz

  // Time.
  std::uint32_t dwell_resolution = 100;        ///< ns
  std::chrono::nanoseconds min_point_time{0};  ///< added to the dwell of each point
  std::chrono::milliseconds response_delay{0};

  // What it measures.
  DeviceUnderTest device = {};
  double noise = 0.0;      ///< dB, standard deviation at each detector with averaging 1
  std::uint32_t seed = 1;  ///< of the noise

  // Faults from the start.
  std::vector<Fault> faults = {};

  std::size_t log_capacity = 4096;  ///< requests that are remembered
};

/// Throws std::invalid_argument, its text names the member, for options that describe no
/// instrument.
void Validate(const Options& options);

}  // namespace simulator
