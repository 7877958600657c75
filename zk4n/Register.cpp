// zk4n register: the driver's registration, through the module's own entry points.

#include <CLI/App.hpp>
#include <cstdio>
#include <memory>

#include "platform/com/Com.h"
#include "platform/os/Module.h"
#include "status/HresultName.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/DriverClient.h"
#include "zk4n/DriverFile.h"

namespace zk4n {
namespace {

struct RegisterOptions {
  bool user = false;
  bool remove = false;
  std::string module;
};

using Install = HRESULT STDAPICALLTYPE(BOOL, LPCWSTR);

int Register(const RegisterOptions& options) {
  const std::string file = DriverFile(options.module);
  os::Module module;
  if (!module.Load(PathArgument(file))) {
    throw DriverError(E_FAIL, "cannot load the driver module " + file);
  }
  auto* const install = module.FunctionOf<Install>("DllInstall");
  if (install == nullptr) {
    throw DriverError(E_FAIL, file + " is not the driver module: it has no DllInstall");
  }
  const HRESULT result =
      install(options.remove ? FALSE : TRUE, options.user ? OLESTR("user") : nullptr);
  if (FAILED(result)) {
    std::string text = std::string(options.remove ? "removing" : "registering") + " " + file +
                       ": " + HresultText(result) + " (" + std::string(HresultName(result)) + ")";
    if (result == E_ACCESSDENIED) text += ": run as administrator, or with --user";
    throw DriverError(result, text);
  }
  std::printf("%s for %s: %s\n", options.remove ? "Registration removed" : "Registered",
              options.user ? "this user" : "all users", file.c_str());
  return exit_status::kOk;
}

}  // namespace

void AddRegisterCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<RegisterOptions>();
  CLI::App* command = app.add_subcommand("register", "Registers the driver as a COM server");
  command->add_flag("--user", options->user, "For this user alone; needs no administrator");
  command->add_flag("--remove", options->remove, "Take the registration away");
  command->add_option("--module", options->module,
                      "Driver module (default: the one beside this program)");
  command->callback([options, &status] { status = Register(*options); });
}

}  // namespace zk4n
