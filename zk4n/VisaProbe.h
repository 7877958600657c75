// The VISA library as the driver finds it, asked directly: what the driver's one result for a
// session that does not open leaves out.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/Module.h"
#include "visa/Visa.h"

namespace zk4n {

/// One library with at most one session. Texts are UTF-8. Not for use by several threads.
class VisaProbe {
 public:
  VisaProbe() = default;
  ~VisaProbe() { Close(); }
  VisaProbe(const VisaProbe&) = delete;
  VisaProbe& operator=(const VisaProbe&) = delete;

  /// Loads the library that the driver in this file would: by the system's search, else from the
  /// driver's folder. Returns false when there is none with the entry points needed here.
  bool Load(const std::string& driver_file);
  /// The loaded library's path.
  [[nodiscard]] std::string File() const;

  /// The settings file that the library follows, empty when there is none; nothing when the library
  /// knows of no such file.
  [[nodiscard]] std::optional<std::string> SettingsFile();
  /// What makes no sense in that file, a text a line.
  [[nodiscard]] std::vector<std::string> SettingsProblems();

  /// Opens a session without a lock, with the library's settings as the driver does; the status.
  ViStatus Open(const std::string& resource);
  /// The section of the settings file that the session follows; empty when there is none.
  [[nodiscard]] std::string SettingsSection() const;
  /// Takes the exclusive lock, without waiting, and gives it back; the status.
  ViStatus TryLock();
  /// Who holds the lock, "process 1234 (zk4n)"; empty when the library cannot tell.
  [[nodiscard]] std::string LockOwner() const;
  /// The code, and what the library says of it.
  [[nodiscard]] std::string Describe(ViStatus status) const;

  /// Ends the session and unloads the library.
  void Close();

 private:
  [[nodiscard]] bool Bind();
  ViStatus OpenManager();
  [[nodiscard]] std::optional<std::string> TextOf(ViObject object, ViAttr attribute) const;

  os::Module module_;
  decltype(&viOpenDefaultRM) open_manager_ = nullptr;
  decltype(&viOpen) open_ = nullptr;
  decltype(&viClose) close_ = nullptr;
  decltype(&viGetAttribute) get_attribute_ = nullptr;
  decltype(&viLock) lock_ = nullptr;
  decltype(&viUnlock) unlock_ = nullptr;
  decltype(&viStatusDesc) describe_ = nullptr;
  ViSession manager_ = 0;
  ViSession session_ = 0;
};

}  // namespace zk4n
