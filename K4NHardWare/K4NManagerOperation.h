// How the manager's operations run. For the manager's own source files.
#pragma once

#include <mutex>
#include <utility>

#include "K4NHardWare/CommandExchanger.h"
#include "K4NHardWare/D3THardWare.h"
#include "K4NHardWare/K4NManager.h"

class CK4NManager::Operation {
 public:
  explicit Operation(CK4NManager& manager) : manager_(manager), lock_(manager.operation_mutex_) {
    manager_.worker_.Pause();
  }
  ~Operation() {
    if (!leaves_worker_paused_ && manager_.MayMeasure()) manager_.worker_.Resume();
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  Status End(Outcome outcome) {
    leaves_worker_paused_ = outcome.leaves_worker_paused;
    return outcome.status;
  }

 private:
  CK4NManager& manager_;
  bool leaves_worker_paused_ = false;
  const std::lock_guard<std::recursive_mutex> lock_;
};

template <typename Body>
Status CK4NManager::Guarded(Body&& body) {
  Operation operation(*this);
  return model_ == nullptr ? Status::kNoSession : operation.End(std::forward<Body>(body)());
}

template <typename T>
T CK4NManager::Cached(T k4n::InstrumentSettings::*setting) const {
  return settings_.With([setting](const k4n::InstrumentSettings& live) { return live.*setting; });
}
