// zk4n check: what a session with the driver needs, one thing after the other.

#include <CLI/App.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/os/Text.h"
#include "status/HresultName.h"
#include "zk4n/Arguments.h"
#include "zk4n/Commands.h"
#include "zk4n/DriverClient.h"
#include "zk4n/DriverFile.h"
#include "zk4n/VisaProbe.h"

namespace zk4n {
namespace {

constexpr int kProgramBits = sizeof(void*) * 8;

struct CheckOptions {
  std::string resource;
  std::string module;
};

/// One check: each step gives a line for a person, or throws what failed.
class Checks {
 public:
  explicit Checks(const CheckOptions& options)
      : options_(options), registered_file_(RegisteredDriverFile()) {
    const bool is_registered_meant = options.module.empty() && !registered_file_.empty();
    driver_file_ = is_registered_meant ? registered_file_ : DriverFile(options.module);
  }

  std::string Bitness() {
    const int bits = BitsOfModule(driver_file_);
    const std::string program = std::to_string(kProgramBits) + "-bit program, ";
    if (bits == 0) throw std::runtime_error(program + "but no driver module in " + driver_file_);
    std::string text = program + std::to_string(bits) + "-bit driver " + driver_file_;
    if (bits != kProgramBits) throw std::runtime_error(text + ": they cannot work together");
    return text;
  }

  std::string Registration() {
    if (!options_.module.empty()) {
      driver_.emplace(PathArgument(driver_file_));
      return registered_file_.empty() ? "none, and none needed with --module"
                                      : "not used with --module: " + registered_file_;
    }
    if (registered_file_.empty()) {
      throw std::runtime_error(std::string(kDriverProgId) +
                               " is not registered: run zk4n register, or give --module");
    }
    driver_.emplace(DriverClient::Registered(kDriverProgId));
    return std::string(kDriverProgId) + " in " + registered_file_;
  }

  std::string VisaLibrary() {
    if (visa_.Load(driver_file_)) return visa_.File();
    throw std::runtime_error(
        "neither zevisa64 nor zevisa is found by the system, nor ZeVISA beside the driver");
  }

  std::string Settings() {
    const std::optional<std::string> file = visa_.SettingsFile();
    if (!file) return "not of this VISA library";
    ignored_ = visa_.SettingsProblems();
    return file->empty() ? "no file, the defaults" : *file;
  }

  std::string Connection() {
    const ViStatus opened = visa_.Open(options_.resource);
    if (opened >= 0) {
      const std::string section = visa_.SettingsSection();
      return options_.resource + (section.empty() ? "" : ", settings of [" + section + "]");
    }
    throw std::runtime_error(options_.resource + ": " + visa_.Describe(opened));
  }

  std::string Lock() {
    const ViStatus locked = visa_.TryLock();
    if (locked == VI_ERROR_RSRC_LOCKED) {
      const std::string owner = visa_.LockOwner();
      throw std::runtime_error("held by " + (owner.empty() ? "another program" : owner) +
                               ", which has the instrument open");
    }
    if (locked < 0) throw std::runtime_error(visa_.Describe(locked));
    // The driver has to find the library by itself, and the instrument free.
    visa_.Close();
    return "free";
  }

  /// What the last step told beside its text; no failure, but worth a line each.
  std::vector<std::string> TakeIgnored() { return std::exchange(ignored_, {}); }

  std::string Identity() {
    DriverClient& driver = *driver_;
    const Bstr name(os::ToWide(options_.resource, os::kUtf8CodePage));
    driver.Check(driver->Initialize(name.Get(), VARIANT_FALSE, VARIANT_FALSE, nullptr),
                 "Initialize");
    ComPtr<IZentrelK4NSystem> system;
    driver.Check(driver->get_System(system.Put()), "System");
    Bstr type;
    driver.Check(system->get_Type(type.Put()), "System.Type");
    Bstr serial;
    driver.Check(system->get_SerialNum(serial.Put()), "System.SerialNum");
    driver.Check(driver->Close(), "Close");
    return DriverClient::Utf8(type) + ", serial number " + DriverClient::Utf8(serial);
  }

 private:
  const CheckOptions& options_;
  std::string registered_file_;
  std::string driver_file_;
  std::optional<DriverClient> driver_;
  VisaProbe visa_;
  std::vector<std::string> ignored_;
};

struct Step {
  const char* name;
  std::string (Checks::*run)();
  bool needs_instrument;
};

constexpr Step kSteps[] = {
    {"bitness", &Checks::Bitness, false},          {"registration", &Checks::Registration, false},
    {"VISA library", &Checks::VisaLibrary, false}, {"settings", &Checks::Settings, false},
    {"connection", &Checks::Connection, true},     {"lock", &Checks::Lock, true},
    {"identity", &Checks::Identity, true},
};

int Check(const CheckOptions& options) {
  Checks checks(options);
  for (const Step& step : kSteps) {
    const auto print = [&step](const char* verdict, const std::string& text) {
      std::printf("%-10s %-13s %s\n", verdict, step.name, text.c_str());
      std::fflush(stdout);
    };
    if (step.needs_instrument && options.resource.empty()) {
      print("not tried", "no --resource is given");
      continue;
    }
    try {
      print("ok", (checks.*step.run)());
      for (const std::string& ignored : checks.TakeIgnored()) print("ignored", ignored);
    } catch (const std::runtime_error& error) {
      print("FAILED", error.what());
      return exit_status::kFailed;
    }
  }
  return exit_status::kOk;
}

}  // namespace

void AddCheckCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* command =
      app.add_subcommand("check", "Checks what a session needs; explains what fails first");
  command->add_option("--resource", options->resource,
                      "VISA resource name, TCPIP0::host::port::SOCKET");
  command->add_option("--module", options->module, "Driver module (default: the registered one)");
  command->callback([options, &status] { status = Check(*options); });
}

}  // namespace zk4n
