// zk4n measure: one stepped measurement through the driver, reported as a table, CSV, SVG or JSON.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>

#include "platform/os/Console.h"
#include "platform/os/Text.h"
#include "simulator/Simulator.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/InstrumentOptions.h"
#include "zk4n/Interrupt.h"
#include "zk4n/OutputFile.h"
#include "zk4n/ProgressDisplay.h"
#include "zk4n/Sweep.h"
#include "zk4n/TraceFiles.h"
#include "zk4n/TraceSvg.h"

namespace zk4n {
namespace {

/// The command line as it was typed; texts are UTF-8.
struct MeasureOptions {
  std::string resource;
  bool simulate = false;
  std::string start = "1GHz";
  std::string stop = "3GHz";
  std::string step = "5MHz";
  std::string level = "0dBm";
  std::string frequency = "1GHz";
  std::string dwell = "0s";
  std::int32_t averaging = 3;
  std::string mode = "frequency";
  std::vector<std::string> detectors;
  std::string csv;
  std::string svg;
  bool json = false;
  std::string module;
  simulator::Options instrument;  ///< with --simulate
};

MeasurementPlan PlanOf(const MeasureOptions& options) {
  MeasurementPlan plan;
  plan.axis = options.mode == "power" ? SweptAxis::kPower : SweptAxis::kFrequency;
  const bool power = plan.axis == SweptAxis::kPower;
  const Unit unit = power ? Unit::kDecibelMilliwatt : Unit::kHertz;
  plan.start = QuantityArgument("--start", options.start, unit);
  plan.stop = QuantityArgument("--stop", options.stop, unit);
  plan.step = QuantityArgument("--step", options.step, power ? Unit::kDecibel : Unit::kHertz);
  plan.level = QuantityArgument("--level", options.level, Unit::kDecibelMilliwatt);
  plan.frequency = QuantityArgument("--frequency", options.frequency, Unit::kHertz);
  plan.dwell = QuantityArgument("--dwell", options.dwell, Unit::kSecond);
  plan.averaging = options.averaging;
  if (plan.stop < plan.start) throw UsageError("--stop is below --start");
  if (plan.step <= 0.0) throw UsageError("--step must be above 0");
  if (plan.dwell < 0.0) throw UsageError("--dwell must not be negative");
  if (plan.averaging < 1 || plan.averaging > 14) throw UsageError("--averaging: 1 to 14");
  if ((plan.stop - plan.start) / plan.step > 1e6) throw UsageError("more than a million points");
  return plan;
}

/// One detector file for one channel index.
struct DetectorChoice {
  std::size_t channel;
  std::string file;
};

std::vector<DetectorChoice> DetectorsOf(const MeasureOptions& options) {
  std::vector<DetectorChoice> choices;
  for (const std::string& text : options.detectors) {
    const auto letter = std::find(kChannelLetters.begin(), kChannelLetters.end(),
                                  std::string_view(text).substr(0, text.empty() ? 0 : 1));
    if (text.size() < 3 || text[1] != '=' || letter == kChannelLetters.end()) {
      throw UsageError("--detector: A=FILE, B=FILE or R=FILE, not " + text);
    }
    choices.push_back({static_cast<std::size_t>(letter - kChannelLetters.begin()), text.substr(2)});
    RequireReadable(choices.back().file);
  }
  return choices;
}

/// The files of the report, opened before anything is measured.
struct ReportFiles {
  std::optional<OutputFile> csv;
  std::optional<OutputFile> svg;
};

void OpenForReport(const std::string& name, std::optional<OutputFile>& file) {
  if (name.empty()) return;
  if (!file.emplace(PathArgument(name)).IsOpen()) throw UsageError("cannot write " + name);
}

void OpenReportFiles(const MeasureOptions& options, ReportFiles& files) {
  if (!options.csv.empty() && options.csv == options.svg) {
    throw UsageError("--csv and --svg name the same file");
  }
  OpenForReport(options.csv, files.csv);
  OpenForReport(options.svg, files.svg);
}

std::string LocalDate() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", std::localtime(&now));
  return text.data();
}

/// Closes the session on every way out.
class Session {
 public:
  Session(const DriverClient& driver, const std::string& resource) : driver_(driver) {
    const Bstr name(os::ToWide(resource, os::kUtf8CodePage));
    driver_.Check(driver_->Initialize(name.Get(), 0, 0, nullptr), "Initialize");
  }
  ~Session() { driver_->Close(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

 private:
  const DriverClient& driver_;
};

void LoadDetectors(const DriverClient& driver, const std::vector<DetectorChoice>& choices) {
  ComPtr<IZentrelK4NAcquisition> acquisition;
  ComPtr<IZentrelK4NChannels> channels;
  driver.Check(driver->get_Acquisition(acquisition.Put()), "Acquisition");
  driver.Check(acquisition->get_Channels(channels.Put()), "Acquisition.Channels");
  for (const DetectorChoice& choice : choices) {
    Bstr name;
    driver.Check(channels->get_Name(static_cast<LONG>(choice.channel) + 1, name.Put()),
                 "Channels.Name");
    ComPtr<IZentrelK4NChannel> channel;
    driver.Check(channels->get_Item(name.Get(), channel.Put()), "Channels.Item");
    const Bstr file(os::ToWide(choice.file, os::kUtf8CodePage));
    driver.Check(channel->LoadDetectorDataFromFile(file.Get()), "LoadDetectorDataFromFile");
  }
}

std::string ConditionsOf(const MeasurementPlan& plan) {
  const bool frequency = plan.axis == SweptAxis::kFrequency;
  std::string text = frequency ? "level " + FormatQuantity(plan.level, Unit::kDecibelMilliwatt)
                               : "at " + FormatQuantity(plan.frequency, Unit::kHertz, 10);
  if (plan.dwell > 0.0) text += ", dwell " + FormatQuantity(plan.dwell, Unit::kSecond);
  return text + ", averaging " + std::to_string(plan.averaging);
}

TraceOrigin OriginOf(const DriverClient& driver, const std::string& resource,
                     const MeasurementPlan& plan) {
  TraceOrigin origin{{}, {}, resource, LocalDate(), ConditionsOf(plan)};
  ComPtr<IZentrelK4NSystem> system;
  driver.Check(driver->get_System(system.Put()), "System");
  // An instrument without these texts measures all the same.
  Bstr type;
  if (system->get_Type(type.Put()) == S_OK) origin.instrument = DriverClient::Utf8(type);
  Bstr serial;
  if (system->get_SerialNum(serial.Put()) == S_OK) origin.serial = DriverClient::Utf8(serial);
  return origin;
}

void Report(const MeasureOptions& options, const Trace& trace, const TraceOrigin& origin,
            ReportFiles& files) {
  if (files.csv && !files.csv->Write(TraceAsCsv(trace, origin))) {
    throw UsageError("cannot write " + options.csv);
  }
  if (files.svg && !files.svg->Write(TraceAsSvg(trace, origin))) {
    throw UsageError("cannot write " + options.svg);
  }
  // Both are whole: now they take their names.
  if (files.csv && !files.csv->Commit()) throw UsageError("cannot write " + options.csv);
  if (files.svg && !files.svg->Commit()) throw UsageError("cannot write " + options.svg);
  const std::string text =
      options.json ? TraceAsJson(trace, origin) : TraceSummaryTable(trace, origin);
  std::fwrite(text.data(), 1, text.size(), stdout);
}

/// An instrument keeps to its limits without a word; its user should know.
void NoteOtherRange(const MeasurementPlan& plan, const Trace& trace) {
  if (trace.x.empty()) return;
  const double tolerance = plan.step / 2;
  if (std::abs(trace.x.front() - plan.start) <= tolerance &&
      trace.x.back() > plan.stop - 2 * plan.step) {
    return;
  }
  std::fprintf(stderr, "zk4n: note: the instrument measured %s to %s\n",
               FormatQuantity(trace.x.front(), trace.XUnit(), 10).c_str(),
               FormatQuantity(trace.x.back(), trace.XUnit(), 10).c_str());
}

/// The detector files of a simulated instrument are known: the ones that ship with the program.
std::vector<DetectorChoice> WithShippedDetectors(std::vector<DetectorChoice> choices) {
  const std::string shipped = Utf8Of(ShippedFile("calibr20.det"));
  for (std::size_t channel = 0; channel < kChannels; ++channel) {
    const auto chosen = [&](const DetectorChoice& choice) { return choice.channel == channel; };
    if (std::none_of(choices.begin(), choices.end(), chosen)) choices.push_back({channel, shipped});
  }
  return choices;
}

int Measure(const MeasureOptions& options) {
  const MeasurementPlan plan = PlanOf(options);
  std::vector<DetectorChoice> detectors = DetectorsOf(options);
  if (options.simulate == !options.resource.empty()) {
    throw UsageError("give either --resource NAME or --simulate");
  }
  RequireInstrument(options.instrument);
  ReportFiles files;
  OpenReportFiles(options, files);

  const InterruptGuard interrupt;
  std::unique_ptr<simulator::Simulator> instrument;
  std::string resource = options.resource;
  if (options.simulate) {
    instrument = std::make_unique<simulator::Simulator>(options.instrument);
    instrument->Start();
    resource = instrument->ResourceName();
    detectors = WithShippedDetectors(std::move(detectors));
  }

  const DriverClient driver(options.module.empty() ? DefaultDriverModule()
                                                   : PathArgument(options.module));
  Trace trace;
  TraceOrigin origin;
  {
    const Session session(driver, resource);
    LoadDetectors(driver, detectors);
    origin = OriginOf(driver, resource, plan);
    ProgressDisplay display("Measuring", options.json);
    trace = RunSweep(
        driver, plan, [&](double share) { display.Show(share); },
        [] { return InterruptGuard::Requested(); });
  }
  NoteOtherRange(plan, trace);
  Report(options, trace, origin, files);
  return exit_status::kOk;
}

}  // namespace

void AddMeasureCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<MeasureOptions>();
  CLI::App* command = app.add_subcommand("measure", "Runs one stepped measurement and reports it");
  command->add_option("--resource", options->resource,
                      "VISA resource name, TCPIP0::host::port::SOCKET");
  CLI::Option* const simulate = command->add_flag("--simulate", options->simulate,
                                                  "Measure on a simulated instrument of its own");
  command->add_option("--mode", options->mode, "What is stepped")
      ->check(CLI::IsMember({"frequency", "power"}))
      ->capture_default_str();
  command->add_option("--start", options->start, "First frequency or level")->capture_default_str();
  command->add_option("--stop", options->stop, "Last frequency or level")->capture_default_str();
  command->add_option("--step", options->step, "Step (Hz, or dB)")->capture_default_str();
  command->add_option("--level", options->level, "Output level while frequency is stepped")
      ->capture_default_str();
  command->add_option("--frequency", options->frequency, "Frequency while the level is stepped")
      ->capture_default_str();
  command->add_option("--dwell", options->dwell, "Time a point, at most 4.29s")
      ->capture_default_str();
  command->add_option("--averaging", options->averaging, "Averaging factor, 1 to 14")
      ->capture_default_str();
  command
      ->add_option("--detector", options->detectors,
                   "Detector file of a channel: A=FILE, B=FILE, R=FILE")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command->add_option("--csv", options->csv, "Write the trace as CSV");
  command->add_option("--svg", options->svg, "Write the trace as a plot");
  command->add_flag("--json", options->json, "Print the result as JSON, nothing else");
  command->add_option("--module", options->module,
                      "Driver module (default: the one beside this program)");
  AddInstrumentOptions(*command, options->instrument, simulate);
  command->callback([options, &status] { status = Measure(*options); });
}

}  // namespace zk4n
