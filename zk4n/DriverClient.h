// The driver as a COM client sees it: the module loaded, one root object created through its class
// factory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "platform/os/Module.h"
#include "server/interface/ZentrelK4NLib.h"

namespace zk4n {

/// The name that the driver is registered by, of whatever version.
inline constexpr char kDriverProgId[] = "ZentrelK4NLib.ZentrelK4N";

/// A failed member of the driver. what() is one line for a person: the member, the result, its
/// name, the driver's own description, and what the error trail holds.
class DriverError : public std::runtime_error {
 public:
  DriverError(HRESULT result, const std::string& text)
      : std::runtime_error(text), result_(result) {}
  [[nodiscard]] HRESULT result() const { return result_; }

 private:
  HRESULT result_;
};

/// Owns the module and its root object; both go with it. Not for use by several threads.
class DriverClient {
 public:
  /// Throws DriverError when the module cannot be loaded or the object not be created.
  explicit DriverClient(const std::filesystem::path& module_file);

  /// The driver as any client gets it: by its ProgID, from where it is registered.
  static DriverClient Registered(const char* prog_id);

  IZentrelK4N* operator->() const { return root_.Get(); }

  /// Another interface of the root object.
  template <typename Interface>
  [[nodiscard]] ComPtr<Interface> As() const {
    ComPtr<Interface> pointer;
    Check(root_->QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(pointer.Put())),
          "QueryInterface");
    return pointer;
  }

  /// Throws DriverError for a failure, and for 10057 (no session), which COM takes for success.
  void Check(HRESULT result, const char* member) const;

  /// Throws DriverError for the oldest failure that the driver keeps in its error trail: there it
  /// puts what `what` met without a result of its own.
  void CheckTrail(const char* what) const;
  /// Forgets what the error trail holds.
  void ClearTrail() const;

  /// Texts of the driver are UTF-16; the console's are UTF-8.
  static std::string Utf8(const Bstr& text);

 private:
  DriverClient() = default;

  struct TrailRecord {
    HRESULT code;
    std::string message;  ///< empty where the driver knows no more than the code
    bool operator==(const TrailRecord&) const = default;
  };
  [[nodiscard]] std::optional<TrailRecord> TakeTrailRecord() const;
  [[nodiscard]] std::string ErrorTrail() const;

  os::Module module_;  ///< released last: the objects' code lives in it
  ComPtr<IZentrelK4N> root_;
};

/// A file that ships with this program: it lies beside it, or where installing puts the modules.
std::filesystem::path ShippedFile(const char* name);
/// The driver module that ships with this program.
std::filesystem::path DefaultDriverModule();

}  // namespace zk4n
