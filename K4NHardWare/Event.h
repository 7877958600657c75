// What a layer of the link tells the layers above it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "K4NHardWare/IEventProcessor.h"

namespace uIEvent {

/// One error or notice, created on the heap by the layer that raises it and handed over with
/// ProcessEvent; the final handler keeps and frees it.
class Event {
 public:
  Event(const void* source, std::string_view name, void* data, std::uint32_t type,
        std::uint32_t kind)
      : data_(data), name_(name), kind_(kind), type_(type), source_(source) {}

  /// Payload chosen by the raiser, may be null; not owned.
  [[nodiscard]] void* data() const { return data_; }
  void set_data(void* data) { data_ = data; }
  /// The event's text, a copy.
  [[nodiscard]] std::string name() const { return name_; }
  [[nodiscard]] std::uint32_t kind() const { return kind_; }
  [[nodiscard]] std::uint32_t type() const { return type_; }
  /// The object that raised the event.
  [[nodiscard]] const void* source() const { return source_; }

 private:
  void* data_;
  std::string name_;
  std::uint32_t kind_;
  std::uint32_t type_;
  const void* source_;
};

// --- The factories. Each returns a new event, or null when there is no memory for it. Only error
// events are raised by the driver itself.
Event* MakeEvent(const void* source, std::string_view name, void* data, std::uint32_t type,
                 std::uint32_t kind);
/// Type 2, kind 2.
Event* MakeErrorEvent(const void* source, std::string_view name, void* data);
/// Type 1, kind 2.
Event* MakeWarningEvent(const void* source, std::string_view name, void* data);
/// Type 3 when `active`, else 0; kind 0.
Event* MakeStateEvent(const void* source, std::string_view name, void* data, bool active);
/// Type 0, kind 1.
Event* MakeNoticeEvent(const void* source, std::string_view name, void* data);

}  // namespace uIEvent
