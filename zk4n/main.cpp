// zk4n: the driver's command-line client.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "platform/com/Com.h"
#include "platform/os/Console.h"
#include "zk4n/Commands.h"
#include "zk4n/DriverClient.h"
#include "zk4n/Sweep.h"
#include "zk_version.h"

using namespace zk4n;

namespace {

int Fail(int status, const char* what) {
  std::fprintf(stderr, "zk4n: %s\n", what);
  return status;
}

/// COM for the program's one thread.
class ComThread {
 public:
  ComThread() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
  ~ComThread() {
    if (result_ >= 0) CoUninitialize();
  }
  ComThread(const ComThread&) = delete;
  ComThread& operator=(const ComThread&) = delete;

 private:
  HRESULT result_;
};

int Run(std::vector<std::string> arguments) {
  CLI::App app("Client of the Zentrel K4N / L5S driver", "zk4n");
  app.set_version_flag("--version", "zk4n " ZK_VERSION_TEXT);
  app.require_subcommand(1);
  app.allow_windows_style_options(
      false);  // a path may begin with a slash; inherited by the commands
  int status = exit_status::kOk;
  AddMeasureCommand(app, status);
  AddShellCommand(app, status);
  AddSimulateCommand(app, status);
  AddRegisterCommand(app, status);
  AddCheckCommand(app, status);
  AddDetectorCommand(app, status);
  AddTraceCommand(app, status);
  try {
    // CLI11 takes them from the back; the program's name is not among them.
    arguments.erase(arguments.begin());
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
  } catch (const CLI::CallForHelp&) {
    std::fputs(app.help().c_str(), stdout);
  } catch (const CLI::CallForVersion& version) {
    std::puts(version.what());
  } catch (const CLI::RequiredError& error) {
    // A word that is no command is more to the point than that one is missing.
    const std::vector<std::string> unknown = app.remaining();
    const std::string text = unknown.empty() ? error.what() : "unknown command: " + unknown.front();
    return Fail(exit_status::kUsage, text.c_str());
  } catch (const CLI::ParseError& error) {
    return Fail(exit_status::kUsage, error.what());
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    os::UseUtf8Output();
    const ComThread com;
    return Run(os::Utf8Arguments(argc, argv));
  } catch (const UsageError& error) {
    return Fail(exit_status::kUsage, error.what());
  } catch (const Interrupted& error) {
    return Fail(exit_status::kInterrupted, error.what());
  } catch (const std::exception& error) {
    return Fail(exit_status::kFailed, error.what());
  }
}
