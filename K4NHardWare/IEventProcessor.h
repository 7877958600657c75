// The upward path of errors and notices: exchanger -> model -> manager, synchronous, without a
// queue.
#pragma once

namespace uIEvent {

class Event;
class EventProcessor;

/// Takes events from the layer below. Without a virtual destructor: owners delete the concrete
/// classes.
class IEventProcessor {
 public:
  /// Takes an event; the final handler keeps it.
  virtual void ProcessEvent(Event* event) = 0;
  /// Stores the next layer up (not owned, may be null) and returns it.
  virtual IEventProcessor* SetManager(IEventProcessor* manager) = 0;
  /// This object as its EventProcessor; null when it is none.
  virtual EventProcessor* GetProcessor() = 0;

 protected:
  ~IEventProcessor() = default;
};

}  // namespace uIEvent
