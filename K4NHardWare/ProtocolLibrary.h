// The protocol library: an optional module that knows texts for the instrument's own error codes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/os/Module.h"
#include "status/Status.h"

namespace k4n {

/// One session of the library at a time. Used under the owner's lock.
class ProtocolLibrary {
 public:
  ProtocolLibrary() = default;
  ~ProtocolLibrary();
  ProtocolLibrary(const ProtocolLibrary&) = delete;
  ProtocolLibrary& operator=(const ProtocolLibrary&) = delete;

  /// With no session open: loads "ProtocolLib" by the system's search, opens a session and has it
  /// read "Protocol.xml". Returns what the library's OpenSession gave; nothing when there is no
  /// such module or one of its four entry points is missing: errors are then reported by number.
  std::optional<Status> Open();
  /// Ends the session and unloads the module; nothing to do when none is loaded.
  void Close();

  /// The text of an error code, narrow; nothing without the library or when it has no text.
  [[nodiscard]] std::optional<std::string> Describe(Status code) const;

 private:
  using OpenSessionFunction = std::int32_t(std::uint32_t* session);
  using LoadFunction = std::int32_t(std::uint32_t session, const char* file_name);
  using DescribeFunction = const char*(std::uint32_t session, std::int32_t code);
  using CloseSessionFunction = std::int32_t(std::uint32_t session);

  os::Module module_;
  std::uint32_t session_ = 0;
  DescribeFunction* describe_ = nullptr;
  CloseSessionFunction* close_session_ = nullptr;
};

}  // namespace k4n
