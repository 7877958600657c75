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
  return model_ == nullptr ? status::kNoSession : std::forward<Body>(body)();
}

template <typename Read>
Status CK4NManager::Cached(Read&& read) const {
  if (!connected_) return status::kNoSession;
  settings_.With(std::forward<Read>(read));
  return status::kOk;
}
