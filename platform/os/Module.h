// Modules loaded at run time.
#pragma once

#include <filesystem>

#include "platform/os/Text.h"

namespace os {

/// One loaded module; unloaded by the destructor or Unload.
class Module {
 public:
  Module() = default;
  ~Module();
  Module(Module&& other) noexcept;
  Module& operator=(Module&& other) noexcept;
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  /// Loads "name.dll" by the system's search, or from the folder that the name carries. Elsewhere
  /// than on Windows the file is libname.so, its name in lower case: "zevisa64.dll" is
  /// libzevisa64.so, and "/opt/driver/ZeVISA.dll" is /opt/driver/libzevisa.so; a name that ends in
  /// .so is a file's own. A module held before is unloaded first. Returns false, holding nothing,
  /// when there is no such module or it cannot be loaded.
  bool Load(const std::filesystem::path& name);

  /// Unloads the module; nothing to do when none is held.
  void Unload();

  [[nodiscard]] bool IsLoaded() const { return handle_ != nullptr; }

  /// The full path of the file that was loaded; empty when the system does not tell or none is
  /// held.
  [[nodiscard]] WideString File() const;

  /// The address of an exported function or object; null when the module lacks it or none is held.
  [[nodiscard]] void* Symbol(const char* name) const;

  /// The address of an exported function as a pointer of its type.
  template <typename Function>
  [[nodiscard]] Function* FunctionOf(const char* name) const {
    return reinterpret_cast<Function*>(Symbol(name));
  }

 private:
  void* handle_ = nullptr;
};

/// The full path of the module that holds this code; empty when the system does not tell.
WideString ThisModuleFile();

/// The folder of the module that holds this code, with a trailing separator; empty when the system
/// does not tell or the path of the module is longer than 260 characters.
std::filesystem::path ThisModuleFolder();

/// Keeps the module that holds this code in the process until that ends, whoever unloads it.
void KeepThisModule();

}  // namespace os
