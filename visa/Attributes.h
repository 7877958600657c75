// The attributes of a session or a resource manager.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

#include "visa/TraceLine.h"
#include "visa/Visa.h"

namespace zevisa {

/// Where an attribute's value is kept. Two attributes that name one thing share a place.
enum class Slot : std::uint8_t {
  kTimeout,
  kTermChar,
  kTermCharEnabled,
  kSendEnd,
  kSuppressEnd,
  kIoProtocol,
  kNoDelay,
  kKeepAlive,
  kPort,
  kInterfaceType,
  kInterfaceNumber,
  kSpecVersion,
  kImplementationVersion,
  kMakerId,
  kLockState,
  kManager,
  kQueueLength,
  kUserData,
  kReadMode,
  kWriteMode,
  kReadBufferSize,
  kWriteBufferSize,
  kFileAppend,
  kDma,
  kNumbers,  ///< the texts follow
  kAddress = kNumbers,
  kHostName,
  kName,
  kClass,
  kInterfaceName,
  kMakerName,
  kLockOwner,
  kSettingsFile,
  kSettingsSection,
  kSlots
};

enum class Owner : std::uint8_t { kManager, kSession };

/// Numbers are read and written without a lock, so that no answer waits for a transfer; texts are
/// fixed before other threads see the object.
class Attributes {
 public:
  explicit Attributes(Owner owner);

  /// Writes exactly as many bytes as the attribute has. VI_ERROR_NSUP_ATTR when there is none.
  ViStatus Get(ViAttr attribute, void* value) const;
  /// What setting the value would answer: VI_ERROR_NSUP_ATTR, _ATTR_READONLY, _NSUP_ATTR_STATE,
  /// VI_SUCCESS.
  [[nodiscard]] ViStatus Check(ViAttr attribute, ViAttrState value) const;
  ViStatus Set(ViAttr attribute, ViAttrState value);

  [[nodiscard]] std::uint64_t Number(Slot slot) const {
    return numbers_[static_cast<std::size_t>(slot)].load(std::memory_order_relaxed);
  }
  void SetNumber(Slot slot, std::uint64_t value) {
    numbers_[static_cast<std::size_t>(slot)].store(value, std::memory_order_relaxed);
  }
  void SetText(Slot slot, std::string text);

 private:
  static constexpr auto kNumberCount = static_cast<std::size_t>(Slot::kNumbers);
  static constexpr auto kTextCount = static_cast<std::size_t>(Slot::kSlots) - kNumberCount;

  Owner owner_;
  std::array<std::atomic<std::uint64_t>, kNumberCount> numbers_{};
  std::array<std::string, kTextCount> texts_;
};

/// Names an attribute in a line of the trace.
void TellAttribute(TraceLine& line, ViAttr attribute);
/// And the value, when a Get gave one.
void TellAttribute(TraceLine& line, ViAttr attribute, const void* value);

}  // namespace zevisa
