// A layer of the link that hands events upward.
#pragma once

#include "K4NHardWare/IEventProcessor.h"

namespace uIEvent {

/// Base class of the command exchanger and the instrument model.
class EventProcessor : public IEventProcessor {
 public:
  /// Hands the event to the layer above. Throws std::logic_error when there is none: a wiring
  /// mistake.
  void ProcessEvent(Event* event) override;
  IEventProcessor* SetManager(IEventProcessor* manager) override;
  EventProcessor* GetProcessor() override;

 protected:
  EventProcessor() = default;
  ~EventProcessor() = default;

  IEventProcessor* manager_ = nullptr;
};

}  // namespace uIEvent
