// The driver as a client has it: the built module, one root object, no session yet.
#pragma once

#include <string>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "server/interface/IviInherent.h"
#include "server/interface/ZentrelK4NLib.h"

namespace bench {

/// Closes its session when it goes. Throws std::runtime_error when something is missing.
struct Driver {
  Driver();
  ~Driver();
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  void Open(const std::string& resource_name) const;

  ComPtr<IZentrelK4N> root;
  ComPtr<IZentrelK4NRF> rf;
  ComPtr<IZentrelK4NSweep> sweep;
  ComPtr<IZentrelK4NFrequencyStep> frequency_step;
  ComPtr<IZentrelK4NAcquisition> acquisition;
  ComPtr<IZentrelK4NChannel> channel;  ///< ChannelA
};

}  // namespace bench
