// The instrument model over the VISA library that plays a script: what the fuzz targets of the wire
// put on it.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "K4NHardWare/CommandExchanger.h"
#include "K4NHardWare/D3THardWare.h"
#include "K4NHardWare/Event.h"
#include "fuzz/Fuzz.h"
#include "tests/link/ScriptedVisa.h"

namespace fuzz {

/// One for each input; the library stays loaded.
class Model final : public uIEvent::IEventProcessor {
 public:
  Model() {
    model_.SetManager(this);
    script().Reset();
  }

  static scripted::Visa& script() {
    static scripted::Visa visa;
    return visa;
  }
  D3THardWare* operator->() { return &model_; }
  D3THardWare& operator*() { return model_; }

  /// A time-out is followed by a lost link, lest the rest of a body be waited for for ever.
  void EndSilence() { script().SpoilAnswer({.silences = 2, .then = scripted::kConnectionLost}); }
  /// Whatever went wrong, a new start finds the model whole.
  void RequireThatItWorks() {
    script().Reset();
    exchanger_.device().Clear();
    double dwell = 7.0;
    Require(model_.SetDwell(dwell) == Status::kOk && dwell == 7.0);
  }

  void ProcessEvent(uIEvent::Event* event) override { event_.reset(event); }
  uIEvent::IEventProcessor* SetManager(uIEvent::IEventProcessor* manager) override {
    return manager;
  }
  uIEvent::EventProcessor* GetProcessor() override { return nullptr; }

 private:
  std::unique_ptr<uIEvent::Event> event_;
  CommandExchanger exchanger_{std::make_unique<uDevice::Interface>("TCPIP::h::1::SOCKET")};
  D3THardWare model_{exchanger_};
};

}  // namespace fuzz
