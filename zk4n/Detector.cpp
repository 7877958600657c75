// zk4n detector: detector calibration files checked, asked, signed, converted and drawn.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "measurement/DetectorFile.h"
#include "measurement/MatrixFile.h"
#include "status/HresultName.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/DetectorCheck.h"
#include "zk4n/DetectorSvg.h"
#include "zk4n/DetectorValues.h"
#include "zk4n/OutputFile.h"

namespace zk4n {
namespace {

/// The command line as it was typed; texts are UTF-8.
struct DetectorOptions {
  std::vector<std::string> files;
  std::string input;
  std::string output;
  std::string frequency;
  std::string level;
  bool json = false;
  bool force = false;
};

void Print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

[[noreturn]] void Refuse(const std::string& file, Status status, const std::string& why) {
  throw std::runtime_error(file + ": " + HresultText(ToCode(status)) + " (" +
                           std::string(HresultName(ToCode(status))) + "): " + why);
}

int Check(const DetectorOptions& options) {
  bool all_good = true;
  for (const std::string& file : options.files) {
    const DetectorCheck check(file);
    Print(options.json ? check.AsJson() : check.AsText());
    all_good = all_good && check.IsGood();
  }
  return all_good ? exit_status::kOk : exit_status::kFailed;
}

/// The input file, which can be opened; good or not.
measurement::DetectorFile ReadInput(const DetectorOptions& options) {
  measurement::DetectorFile file;
  if (file.Read(PathArgument(options.input)) == measurement::DetectorFile::Fault::kCannotOpen) {
    throw UsageError("cannot read " + options.input);
  }
  return file;
}

/// The table of an input file that the driver takes; levels are linear.
CSimpleMatrix LoadInput(const DetectorOptions& options) {
  const measurement::DetectorFile file = ReadInput(options);
  CSimpleMatrix matrix;
  Status status = file.ReadStatus();
  if (status == Status::kOk) status = file.Fill(matrix);
  if (status != Status::kOk) Refuse(options.input, status, FaultText(file));
  return matrix;
}

std::string ValueText(const DetectorOptions& options, const DetectorPoint& point, double value) {
  if (!options.json) return FormatNumber(value, 17) + "\n";
  const nlohmann::ordered_json object{
      {"frequency", point.frequency_mhz}, {"level", point.level}, {"value", value}};
  return object.dump() + "\n";
}

int Value(const DetectorOptions& options) {
  if (options.frequency.empty() != options.level.empty()) {
    throw UsageError("give --frequency and --level, or neither");
  }
  std::optional<DetectorPoint> only_point;
  if (!options.frequency.empty()) {
    only_point = {DecimalArgument("--frequency", options.frequency),
                  DecimalArgument("--level", options.level)};
  }
  CSimpleMatrix matrix = LoadInput(options);
  measurement::ConvertLevelAxisToLog10(matrix);
  const measurement::DetectorTable table(matrix);
  const auto answer = [&](const DetectorPoint& point) {
    Print(ValueText(options, point, DetectorValue(table, point)));
  };
  only_point ? answer(*only_point) : ForEachDetectorPoint(std::cin, answer);
  return exit_status::kOk;
}

/// Writes the whole file or none.
void WriteOutput(const DetectorOptions& options, const std::string& content) {
  OutputFile file(PathArgument(options.output));
  if (!file.IsOpen() || !file.Write(content) || !file.Commit()) {
    throw UsageError("cannot write " + options.output);
  }
}

/// Writes the table of a file as version 3 with its digest.
int WriteSigned(const DetectorOptions& options, const measurement::DetectorFile& file,
                const std::string& header) {
  CSimpleMatrix matrix;
  std::string content;
  Status status = file.Fill(matrix);
  if (status == Status::kOk) {
    status = measurement::ComposeMatrixFile(
        matrix, header, measurement::kMatrixFileDigest | measurement::kMatrixFileExact, content);
  }
  if (status != Status::kOk) Refuse(options.input, status, "too many levels");
  WriteOutput(options, content);
  return exit_status::kOk;
}

void RequireTable(const DetectorOptions& options, const measurement::DetectorFile& file) {
  if (!file.HasTable()) Refuse(options.input, file.ReadStatus(), FaultText(file));
}

void RequireNewOutput(const DetectorOptions& options) {
  std::error_code error;
  const auto found = std::filesystem::symlink_status(PathArgument(options.output), error);
  if (!options.force && std::filesystem::exists(found)) {
    throw UsageError(options.output + " exists; --force overwrites it");
  }
}

int Sign(const DetectorOptions& options) {
  RequireNewOutput(options);
  const measurement::DetectorFile file = ReadInput(options);
  RequireTable(options, file);
  // A file that does not state its version is of version 0: whether it has levels cannot be told.
  if (file.Version() != measurement::kVersionSigned) {
    throw std::runtime_error(options.input + " is of version 0: convert makes a version 3 of it");
  }
  return WriteSigned(options, file, file.Text().Header());
}

/// The header lines with the version changed.
std::string HeaderOfVersion3(const std::string& header) {
  std::string changed = "#VERSION 3";
  measurement::LineReader lines(header);
  std::string_view line;
  while (lines.Next(line)) {
    const bool is_version = line == "#VERSION" || line.starts_with("#VERSION ");
    if (!is_version) (changed += '\n') += line;
  }
  return changed;
}

int Convert(const DetectorOptions& options) {
  RequireNewOutput(options);
  const measurement::DetectorFile file = ReadInput(options);
  RequireTable(options, file);
  if (file.Version() != measurement::kVersionWithoutLevels) {
    throw std::runtime_error(options.input + " is of version 3 already");
  }
  return WriteSigned(options, file, HeaderOfVersion3(file.Text().Header()));
}

int Plot(const DetectorOptions& options) {
  const CSimpleMatrix matrix = LoadInput(options);
  if (matrix.GetCols() < 2 || matrix.GetRows() < 2) {
    Refuse(options.input, Status::kInvalidFileFormat, "the table has no frequency or no level");
  }
  const std::u8string name = PathArgument(options.input).filename().u8string();
  WriteOutput(options, DetectorAsSvg(matrix, {name.begin(), name.end()}));
  return exit_status::kOk;
}

}  // namespace

void AddDetectorCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<DetectorOptions>();
  CLI::App* const command = app.add_subcommand("detector", "Works on detector calibration files");
  command->require_subcommand(1);
  const auto add = [&](const char* name, const char* text, int (*run)(const DetectorOptions&)) {
    CLI::App* const action = command->add_subcommand(name, text);
    action->callback([options, run, &status] { status = run(*options); });
    return action;
  };
  const auto add_input = [&](CLI::App* action) {
    action->add_option("FILE", options->input, "Detector file")->required();
  };

  CLI::App* const check =
      add("check", "Tells what files hold, and whether the driver takes them", Check);
  check->add_option("FILE", options->files, "Detector files")->required();
  check->add_flag("--json", options->json, "Print one JSON object a file");

  CLI::App* const value = add("value", "Gives calibrated values, as the driver does", Value);
  add_input(value);
  value->add_option("--frequency", options->frequency,
                    "Frequency, MHz; without it, \"frequency level\" lines are read");
  value->add_option("--level", options->level, "Level, linear, as the detector reads it");
  value->add_flag("--json", options->json, "Print one JSON object a value");

  for (CLI::App* const action : {add("sign", "Writes a version 3 file with its digest", Sign),
                                 add("convert", "Writes a version 0 file as version 3", Convert)}) {
    action->add_option("IN", options->input, "Detector file to read")->required();
    action->add_option("OUT", options->output, "Detector file to write")->required();
    action->add_flag("--force", options->force, "Overwrite a file that exists");
  }

  CLI::App* const plot = add("plot", "Draws value against frequency, one curve a level", Plot);
  add_input(plot);
  plot->add_option("--svg", options->output, "File to write")->required();
}

}  // namespace zk4n
