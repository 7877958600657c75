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
    manager_.leave_worker_paused_ = false;
    manager_.worker_.Pause();
  }
  ~Operation() {
    if (!manager_.leave_worker_paused_ && manager_.MayMeasure()) manager_.worker_.Resume();
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

 private:
  CK4NManager& manager_;
  const std::lock_guard<std::recursive_mutex> lock_;
};

template <typename Body>
Status CK4NManager::Guarded(Body&& body) {
  const Operation operation(*this);
  return model_ == nullptr ? Status::kNoSession : std::forward<Body>(body)();
}

template <typename T>
T CK4NManager::Cached(T InstrumentSettings::*setting) const {
  return settings_.With([setting](const InstrumentSettings& live) { return live.*setting; });
}
