// The pulse generator and the pulse modulator. Times in nanoseconds.
#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "K4NHardWare/K4NManagerOperation.h"
#include "K4NHardWare/RealArray.h"
#include "K4NHardWare/Units.h"

using namespace k4n;

namespace {

// What the instrument does with a pulse train.
constexpr std::uint32_t kTrainOff = 0;
constexpr std::uint32_t kTrainOn = 2;

bool IsTime(double nanoseconds) { return nanoseconds >= 0.0; }

/// The widths and delays of a packet as the client gave them, seconds. Kept: an empty array of
/// widths stays locked.
Status ReadPacket(SAFEARRAY* widths, SAFEARRAY* delays, PulseSettings& pulse) {
  if (widths != nullptr) {
    RealArray elements(widths);
    if (FAILED(elements.locked())) return Status{elements.locked()};
    pulse.packet_widths = elements.Read();
    if (pulse.packet_widths.empty()) {
      elements.KeepLocked();
      return Status::kInvalidValue;
    }
  }
  if (delays != nullptr) {
    const RealArray elements(delays);
    if (FAILED(elements.locked())) return Status{elements.locked()};
    pulse.packet_gaps = elements.Read();
  }
  return pulse.packet_gaps.size() == pulse.packet_widths.size() ? Status::kOk
                                                                : Status::kInvalidValue;
}

/// Stops at the first invalid time. Kept: the times before it stay converted.
Status ConvertPacket(PulseSettings& pulse) {
  for (std::size_t i = 0; i < pulse.packet_widths.size(); ++i) {
    double& width = pulse.packet_widths[i];
    double& gap = pulse.packet_gaps[i];
    width *= kNanosecondsPerSecond;
    gap *= kNanosecondsPerSecond;
    if (!IsTime(width) || !IsTime(gap)) return Status::kInvalidValue;
  }
  return Status::kOk;
}

void WriteBack(std::vector<double> nanoseconds, SAFEARRAY* array) {
  if (array == nullptr) return;
  for (double& time : nanoseconds) time /= kNanosecondsPerSecond;
  RealArray(array).Write(nanoseconds);
}

}  // namespace

/// Stores a setting, with or without a session, and sends the train if the modulator is on.
template <typename Change>
Status CK4NManager::ChangePulse(Change&& change) {
  const std::lock_guard lock(operation_mutex_);
  const bool modulated = pulse_.With([&](PulseSettings& pulse) {
    std::forward<Change>(change)(pulse);
    return pulse.modulation_enabled;
  });
  return modulated ? Guarded([this] { return ProgramPulseModulation(); }) : Status::kOk;
}

Status CK4NManager::SetPulseWidth(double width) {
  if (!IsTime(width)) return Status::kInvalidValue;
  return ChangePulse([&](PulseSettings& pulse) { pulse.width = width; });
}

Status CK4NManager::SetPulsePeriod(double period) {
  if (!IsTime(period)) return Status::kInvalidValue;
  return ChangePulse([&](PulseSettings& pulse) { pulse.period = period; });
}

Status CK4NManager::SetDoublePulseEnabled(bool enabled) {
  return ChangePulse([&](PulseSettings& pulse) {
    pulse.double_enabled = enabled;
    if (enabled) pulse.packet_enabled = false;
  });
}

Status CK4NManager::SetDoublePulseDelay(double delay) {
  if (!IsTime(delay)) return Status::kInvalidValue;
  const std::lock_guard lock(operation_mutex_);
  pulse_.With([&](PulseSettings& pulse) { pulse.double_delay = delay; });
  return Status::kOk;
}

Status CK4NManager::SetPacketEnabled(bool enabled) {
  return ChangePulse([&](PulseSettings& pulse) {
    pulse.packet_enabled = enabled;
    if (enabled) pulse.double_enabled = false;
  });
}

Status CK4NManager::ConfigurePacket(bool enabled, SAFEARRAY* widths, SAFEARRAY* delays) {
  const std::lock_guard lock(operation_mutex_);
  PulseSettings packet;
  Status result = ReadPacket(widths, delays, packet);
  if (result == Status::kOk) {
    result = ConvertPacket(packet);
  } else {
    packet = {};
  }
  pulse_.With([&](PulseSettings& pulse) {
    pulse.packet_widths = packet.packet_widths;
    pulse.packet_gaps = packet.packet_gaps;
  });
  if (result != Status::kOk) return result;

  result = SetPacketEnabled(enabled);
  packet = pulse_.Copy();
  WriteBack(std::move(packet.packet_widths), widths);
  WriteBack(std::move(packet.packet_gaps), delays);
  return result;
}

Status CK4NManager::SetPulseModEnabled(bool enabled) {
  const std::lock_guard lock(operation_mutex_);
  pulse_.With([&](PulseSettings& pulse) { pulse.modulation_enabled = enabled; });
  return Guarded([&] {
    return enabled ? ProgramPulseModulation() : Record(Site::kPulseOff, SwitchPulseModulationOff());
  });
}

Status CK4NManager::SetPulseModSource(PulseSource source) {
  return ChangePulse([&](PulseSettings& pulse) { pulse.modulation_source = source; });
}

/// The polarity is sent even if the modulator is off.
Status CK4NManager::SetPulseModPolarity(bool inverse) {
  const std::lock_guard lock(operation_mutex_);
  const bool enabled = pulse_.With([&](PulseSettings& pulse) {
    pulse.modulation_inverse = inverse;
    return pulse.modulation_enabled;
  });
  return SetPulseModEnabled(enabled);
}

PulseSettings CK4NManager::GetPulseSettings() const { return pulse_.Copy(); }

Status CK4NManager::ProgramPulseModulation() {
  PulseSettings pulse = pulse_.Copy();
  Status result;
  if (pulse.packet_enabled) {
    result = ProgramPacket(pulse);
  } else if (pulse.double_enabled) {
    result = ProgramDoublePulse(pulse);
  } else {
    result = ProgramSinglePulse(pulse);
  }
  pulse_.Set(std::move(pulse));
  return result;
}

Status CK4NManager::ProgramSinglePulse(PulseSettings& pulse) {
  block_.Discard();
  std::array widths = {pulse.width};
  std::array gaps = {std::max(pulse.period - pulse.width, 0.0)};
  const Status result =
      Record(Site::kPulseTrain, model_->TransferPulseTrain(kTrainOn, pulse.modulation_source,
                                                           widths, gaps, pulse.modulation_inverse));
  // A period shorter than the pulse thus becomes the pulse's width.
  pulse.period = widths[0] + gaps[0];
  return result;
}

Status CK4NManager::ProgramDoublePulse(PulseSettings& pulse) {
  std::array widths = {pulse.width, pulse.width};
  std::array gaps = {pulse.double_delay,
                     std::max(pulse.period - 2 * pulse.width - pulse.double_delay, 0.0)};
  return Record(Site::kPulseTrain,
                model_->TransferPulseTrain(kTrainOn, pulse.modulation_source, widths, gaps,
                                           pulse.modulation_inverse));
}

/// Kept: the packet always fills exactly one period, so the client's last delay is replaced.
Status CK4NManager::ProgramPacket(PulseSettings& pulse) {
  std::vector<double>& widths = pulse.packet_widths;
  std::vector<double>& gaps = pulse.packet_gaps;
  if (widths.empty() || widths.size() != gaps.size()) return Status::kInvalidValue;
  const double busy = std::accumulate(widths.begin(), widths.end(), 0.0) +
                      std::accumulate(gaps.begin(), gaps.end() - 1, 0.0);
  gaps.back() = std::max(pulse.period - busy, 0.0);
  return Record(Site::kPulseTrain,
                model_->TransferPulseTrain(kTrainOn, pulse.modulation_source, widths, gaps,
                                           pulse.modulation_inverse));
}

/// The caller records a failure: at connection it may be none.
Status CK4NManager::SwitchPulseModulationOff() {
  block_.Discard();
  PulseSettings pulse = pulse_.Copy();
  std::array widths = {0.0};
  std::array gaps = {0.0};
  const Status result = model_->TransferPulseTrain(kTrainOff, pulse.modulation_source, widths, gaps,
                                                   pulse.modulation_inverse);
  pulse_.Set(std::move(pulse));
  return result;
}
