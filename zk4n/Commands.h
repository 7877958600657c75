// The commands of zk4n. Each adds itself to the program's command line and leaves its exit status
// when it ran.
#pragma once

#include <CLI/App.hpp>
#include <stdexcept>
#include <string>

namespace zk4n {

namespace exit_status {
inline constexpr int kOk = 0;
inline constexpr int kFailed = 1;  ///< the driver or the instrument said no
inline constexpr int kUsage = 2;   ///< bad arguments, or a file that cannot be read or written
inline constexpr int kInterrupted = 130;
}  // namespace exit_status

/// Bad arguments or files: one line for the user, exit status 2, nothing written.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// `zk4n measure`: one stepped measurement, as a table, CSV, SVG or JSON.
void AddMeasureCommand(CLI::App& app, int& status);

/// `zk4n register`: the driver's COM registration, made or taken away.
void AddRegisterCommand(CLI::App& app, int& status);

/// `zk4n check`: whether a session could be opened, and if not, why.
void AddCheckCommand(CLI::App& app, int& status);

/// `zk4n shell`: a console of the driver, every member by name.
void AddShellCommand(CLI::App& app, int& status);

/// `zk4n simulate`: the instrument simulator, listening until Ctrl-C.
void AddSimulateCommand(CLI::App& app, int& status);

/// `zk4n detector`: detector calibration files checked, asked, signed, converted and drawn.
void AddDetectorCommand(CLI::App& app, int& status);

/// `zk4n trace`: an I/O trace of the VISA library in words.
void AddTraceCommand(CLI::App& app, int& status);

}  // namespace zk4n
