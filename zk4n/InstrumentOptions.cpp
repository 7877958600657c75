#include "zk4n/InstrumentOptions.h"

#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/FaultText.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"

namespace zk4n {
namespace {

using simulator::DeviceKind;
using simulator::FrequencyForm;
using simulator::InstrumentKind;

constexpr const char* kInstrumentGroup = "Simulated instrument";
constexpr const char* kDeviceGroup = "Device under test of the simulated instrument";
constexpr const char* kFaultGroup = "Faults of the simulated instrument";

/// Adds options of one group.
class Group {
 public:
  Group(CLI::App& command, const char* name, CLI::Option* needed)
      : command_(command), name_(name), needed_(needed) {}

  template <typename Value>
  void Plain(const char* option, Value& value, const char* help) {
    Finish(command_.add_option(option, value, help)->capture_default_str());
  }

  void Quantity(const char* option, double& value, Unit unit, const char* help) {
    const auto take = [&value, option, unit](const std::string& text) {
      value = QuantityArgument(option, text, unit);
    };
    Finish(command_.add_option_function<std::string>(option, take, help)
               ->default_str(FormatQuantity(value, unit)));
  }

  /// One of some names.
  template <typename Value>
  void Choice(const char* option, Value& value, const std::map<std::string, Value>& names,
              const char* help) {
    std::vector<std::string> allowed;
    std::string chosen;
    for (const auto& [name, meaning] : names) {
      allowed.push_back(name);
      if (meaning == value) chosen = name;
    }
    const auto take = [&value, names](const std::string& name) { value = names.at(name); };
    Finish(command_.add_option_function<std::string>(option, take, help)
               ->check(CLI::IsMember(allowed))
               ->default_str(chosen));
  }

  /// A flag that takes something away.
  void Without(const char* option, bool& value, const char* help) {
    Finish(command_.add_flag_function(
        option, [&value](std::int64_t) { value = false; }, help));
  }

  void Finish(CLI::Option* option) {
    option->group(name_);
    if (needed_ != nullptr) option->needs(needed_);
  }

 private:
  CLI::App& command_;
  const char* name_;
  CLI::Option* needed_;
};

void AddInstrument(Group group, simulator::Options& options) {
  group.Choice<InstrumentKind>("--kind", options.kind,
                               {{"generator", InstrumentKind::kGenerator},
                                {"detectors", InstrumentKind::kDetectors},
                                {"analyser", InstrumentKind::kAnalyser}},
                               "A generator alone, one with plain detectors, or an analyser");
  group.Plain("--serial", options.serial_number, "Serial number");
  group.Plain("--type", options.type, "Type text");
  group.Without("--no-serial-query", options.serial_number_query,
                "The serial number is only in its file");
  group.Quantity("--min-frequency", options.min_frequency, Unit::kHertz, "Lower frequency limit");
  group.Quantity("--max-frequency", options.max_frequency, Unit::kHertz, "Upper frequency limit");
  group.Choice<FrequencyForm>("--frequency-form", options.frequency_form,
                              {{"narrow", FrequencyForm::kNarrow},
                               {"wide", FrequencyForm::kWide},
                               {"four-element", FrequencyForm::kFourElement}},
                              "Newest form of the frequency command that it understands");
  group.Quantity("--min-level", options.min_level, Unit::kDecibelMilliwatt, "Lowest level");
  group.Quantity("--max-level", options.max_level, Unit::kDecibelMilliwatt, "Highest level");
  group.Plain("--power-variant", options.power_variant, "Power command generation, 0 to 5");
  group.Plain("--attenuator-mode", options.attenuator_mode,
              "Attenuator mode at the start, 2 to 5; 0: it has no modes");
  group.Plain("--trigger-groups", options.trigger_groups, "Trigger groups, 1 or 2");
  group.Without("--no-pulse-modulator", options.pulse_modulator, "It knows no pulse trains");
  group.Without("--no-reference-frequency", options.reference_frequency,
                "Its external reference can only be switched");
}

void AddDevice(Group group, simulator::Options& options) {
  simulator::DeviceUnderTest& device = options.device;
  group.Choice<DeviceKind>("--device", device.kind,
                           {{"band-pass", DeviceKind::kBandPass},
                            {"flat", DeviceKind::kFlat},
                            {"open", DeviceKind::kOpen}},
                           "What is connected: a filter, a plain line, or nothing");
  group.Quantity("--centre", device.centre, Unit::kHertz, "Centre of the band-pass");
  group.Quantity("--width", device.width, Unit::kHertz, "Width between its -3 dB points");
  group.Plain("--order", device.order, "Its order, 1 to 20");
  group.Quantity("--loss", device.loss, Unit::kDecibel, "Loss of the pass band or of the line");
  group.Quantity("--isolation", device.isolation, Unit::kDecibel, "Most that is held back");
  group.Quantity("--return-loss", device.return_loss, Unit::kDecibel, "Best match");
  group.Quantity("--noise", options.noise, Unit::kDecibel,
                 "Noise at each detector, standard deviation with averaging 1");
  group.Plain("--seed", options.seed, "Seed of the noise");
}

void AddFaults(CLI::App& command, Group group, simulator::Options& options) {
  const auto take_delay = [&options](const std::string& text) {
    const double seconds = QuantityArgument("--response-delay", text, Unit::kSecond);
    // An hour is more than an instrument takes; what is beyond is refused later, in range.
    options.response_delay =
        std::chrono::milliseconds(std::llround(std::clamp(seconds, -1.0, 1e5) * 1e3));
  };
  group.Finish(command
                   .add_option_function<std::string>("--response-delay", take_delay,
                                                     "Time before each answer")
                   ->default_str("0 s"));
  const auto take_faults = [&options](const std::vector<std::string>& texts) {
    try {
      for (const std::string& text : texts) options.faults.push_back(simulator::ParseFault(text));
    } catch (const std::invalid_argument& error) {
      throw UsageError(std::string("--") + error.what());
    }
  };
  group.Finish(command
                   .add_option_function<std::vector<std::string>>(
                       "--fault", take_faults, "A fault (see below); may be repeated")
                   ->expected(1)
                   ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll));
}

}  // namespace

void AddInstrumentOptions(CLI::App& command, simulator::Options& options, CLI::Option* needed) {
  AddInstrument(Group(command, kInstrumentGroup, needed), options);
  AddDevice(Group(command, kDeviceGroup, needed), options);
  command.footer(std::string(simulator::kFaultTextHelp));
  AddFaults(command, Group(command, kFaultGroup, needed), options);
}

void RequireInstrument(const simulator::Options& options) {
  try {
    simulator::Validate(options);
  } catch (const std::invalid_argument& error) {
    throw UsageError(error.what());
  }
}

}  // namespace zk4n
