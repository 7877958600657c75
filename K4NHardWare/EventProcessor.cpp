#include "K4NHardWare/EventProcessor.h"

#include <stdexcept>

namespace uIEvent {

void EventProcessor::ProcessEvent(Event* event) {
  if (manager_ == nullptr) {
    throw std::logic_error("Debug: Manager doesn't set. uIEvent::EventProcessor::ProcessEvent");
  }
  manager_->ProcessEvent(event);
}

IEventProcessor* EventProcessor::SetManager(IEventProcessor* manager) {
  manager_ = manager;
  return manager_;
}

EventProcessor* EventProcessor::GetProcessor() { return this; }

}  // namespace uIEvent
