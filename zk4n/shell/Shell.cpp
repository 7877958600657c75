// zk4n shell: the driver console.

#include <CLI/App.hpp>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>

#include "platform/os/Console.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/DriverFile.h"
#include "zk4n/shell/Console.h"
#include "zk4n/shell/LineSource.h"
#include "zk4n/shell/Report.h"

namespace zk4n {
namespace {

struct ShellOptions {
  bool json = false;
  bool registered = false;
  std::string module;
  std::string script;
};

/// Names that may stand where the line ends.
shell::Completion CompleteName(std::string_view line) {
  const auto unfinished = shell::ParseUnfinished(line);
  if (!unfinished) return {};
  std::vector<std::string> names = shell::NamesAfter(unfinished->path);
  if (unfinished->path.empty()) {
    names.insert(names.end(), shell::VerbNames().begin(), shell::VerbNames().end());
  }
  std::erase_if(names,
                [&](const std::string& name) { return !name.starts_with(unfinished->name); });
  return {unfinished->name, std::move(names)};
}

void PrintAtOnce(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

std::string Fault(const ShellOptions& options, const std::string& line, const char* why) {
  return options.json ? shell::FaultAsJson(line, why) : std::string("fault: ") + why;
}

/// Carries out one line; false when it was the last.
bool RunLine(shell::Console& console, const ShellOptions& options, const std::string& line) {
  try {
    const shell::Command command = shell::ParseCommand(line);
    if (command.verb == shell::Verb::kQuit) return false;
    if (command.verb == shell::Verb::kNothing) return true;
    const shell::Result result = console.Run(command);
    PrintAtOnce(options.json ? shell::ResultAsJson(line, result) : shell::ResultAsText(result));
  } catch (const std::bad_alloc&) {
    PrintAtOnce(Fault(options, line, "out of memory"));
  } catch (const shell::Fault& fault) {
    PrintAtOnce(Fault(options, line, fault.what()));
  }
  return true;
}

int RunShell(const ShellOptions& options) {
  std::ifstream script;
  if (!options.script.empty()) {
    RequireReadable(options.script);
    script.open(PathArgument(options.script), std::ios::binary);
  }
  const std::string module = options.registered ? "" : DriverFile(options.module);
  os::UseByteStreams();
  shell::Console console([&] {
    return options.registered ? DriverClient::Registered(kDriverProgId)
                              : DriverClient(PathArgument(module));
  });
  const bool is_interactive =
      !script.is_open() && !options.json && os::IsTerminal(stdin) && os::IsTerminal(stdout);
  const std::unique_ptr<shell::LineSource> lines =
      is_interactive ? shell::LinesOfTerminal("zk4n> ", CompleteName)
                     : shell::LinesOf(options.script.empty() ? std::cin : script);
  while (const auto line = lines->Next()) {
    if (!RunLine(console, options, *line)) break;
  }
  return exit_status::kOk;
}

}  // namespace

void AddShellCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<ShellOptions>();
  CLI::App* command = app.add_subcommand(
      "shell",
      "Console of the driver: every member by name, a line each (help lists the commands)");
  command->add_option("script", options->script, "Commands to run (default: standard input)");
  command->add_flag("--json", options->json, "Each result as one line of JSON");
  CLI::Option* module =
      command->add_option("--module", options->module, "Driver module (default: beside zk4n)");
  command
      ->add_flag("--registered", options->registered,
                 "Create the driver by its ProgID, from where it is registered")
      ->excludes(module);
  command->callback([options, &status] { status = RunShell(*options); });
}

}  // namespace zk4n
