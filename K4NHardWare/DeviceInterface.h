// One session to an instrument through the VISA library.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "status/Status.h"
#include "visa/Visa.h"

namespace uDevice {

class VisaLibrary;

/// Loads the VISA library, opens one instrument by its resource name and offers the few calls that
/// the link needs. Used by one thread at a time, but for StatusDescription and last_status, which
/// any thread may call meanwhile. Without a library or a session every call fails with a VISA
/// status; nothing throws.
class Interface {
 public:
  /// Opens the session: exclusive lock, open time-out 1000 ms, then an I/O time-out of 2000 ms.
  /// last_status() tells the outcome: 0, or the status of the step that failed (0xBFFF009E when
  /// there is no library).
  explicit Interface(std::string resource_name);
  /// Closes the session and unloads the library.
  ~Interface();
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;

  /// The status of the last VISA call made here.
  [[nodiscard]] Status last_status() const { return last_status_; }

  /// Reads until the buffer is full; `count` receives the bytes that came, on failure too.
  /// Completion codes of VISA count as 0.
  Status Read(std::span<std::uint8_t> buffer, std::uint32_t& count);
  /// Writes the bytes; `count` receives the bytes that went. VISA's status unchanged.
  Status Write(std::span<const std::uint8_t> bytes, std::uint32_t& count);
  /// Reads under a time-out of 1000 ms. Kept: after a failed read the session stays at 1000 ms.
  Status ReadWithTimeout(std::span<std::uint8_t> buffer, std::uint32_t& count);
  /// Drops what has arrived and not been read.
  Status Clear();
  /// The library's text for one of its statuses.
  [[nodiscard]] std::string StatusDescription(Status code);

 private:
  void OpenSession();
  /// Stores the status of a VISA call in last_status and returns it.
  Status Note(ViStatus status);

  std::unique_ptr<VisaLibrary> library_;
  std::string resource_name_;
  std::uint32_t resource_manager_ = 0;  ///< never closed: unloading the library ends it
  std::uint32_t session_ = 0;
  std::atomic<Status> last_status_ = Status::kOk;
};

}  // namespace uDevice
