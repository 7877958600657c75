// Averaging, detector tables, channel transforms, and the way of a block to a trace.
#include <cmath>

#include "K4NHardWare/K4NManagerOperation.h"
#include "measurement/DetectorFile.h"

using namespace k4n;

namespace {

constexpr double kLargestOffset = 1e11;  // Hz
constexpr double kSmallestDivider = 1.0;

}  // namespace

Status CK4NManager::SetAveraging(std::int32_t count) {
  if (instrument_kind_ == measurement::InstrumentKind::kGenerator)
    return Status::kPropertyNotSupported;
  return Guarded([&] { return ProgramAveraging(count); });
}

/// Stores the count as the instrument set it, or the given one if the instrument refuses it.
Status CK4NManager::ProgramAveraging(std::int32_t count) {
  const bool is_sent = settings_.With([&](InstrumentSettings& live) {
    live.averaging = count;
    return live.averaging_enabled;
  });
  if (!is_sent) return Status::kOk;
  block_.Discard();
  const Status result = Record(Site::kAveraging, model_->SetAveraging(count));
  if (Succeeded(result)) settings_.With([&](InstrumentSettings& live) { live.averaging = count; });
  return result;
}

std::optional<std::int32_t> CK4NManager::GetAveraging() const {
  if (instrument_kind_ == measurement::InstrumentKind::kGenerator) return std::nullopt;
  return Cached(&InstrumentSettings::averaging);
}

Status CK4NManager::LoadDetectorData(std::size_t channel, const std::filesystem::path& file) {
  if (instrument_kind_ == measurement::InstrumentKind::kGenerator)
    return Status::kMethodNotSupported;
  if (channel >= measurement::kTraceChannels) return Status::kOk;
  return Guarded([&] {
    std::shared_ptr<const measurement::DetectorTable> table;
    const Status result = measurement::LoadDetectorTable(file, table);
    if (result == Status::kOk) {
      detector_tables_.With([&](auto& tables) { tables[channel] = std::move(table); });
    }
    return result;
  });
}

Status CK4NManager::FetchData(TraceMatrix& trace) {
  const measurement::InstrumentKind kind = instrument_kind_;
  if (kind == measurement::InstrumentKind::kGenerator) return Status::kMethodNotSupported;
  if (!connected_) return Status::kNoSession;
  // Before the first sweep is programmed, FetchData reads a block by itself.
  if (!sweep_armed_) {
    const Status read = Guarded([this] { return worker_.ReadSingleBlock(); });
    if (read != Status::kOk) return read;
  }
  const auto transforms =
      settings_.With([](const InstrumentSettings& live) { return live.channels; });
  const auto tables = detector_tables_.Copy();
  std::array<measurement::ChannelCalibration, measurement::kTraceChannels> channels;
  for (std::size_t c = 0; c < measurement::kTraceChannels; ++c)
    channels[c] = {transforms[c], tables[c]};
  return block_.Convert(kind, frequency_list_.Copy(), channels, trace) ? Status::kOk
                                                                       : Status::kVisaTimeout;
}

Status CK4NManager::SetChannel(std::size_t channel, double measurement::ChannelTransform::*element,
                               double value, bool is_valid) {
  if (channel >= measurement::kTraceChannels) return Status::kOk;
  if (!is_valid) return Status::kInvalidValue;
  settings_.With([&](InstrumentSettings& live) { live.channels[channel].*element = value; });
  return Status::kOk;
}

measurement::ChannelTransform CK4NManager::GetChannel(std::size_t channel) const {
  return channel < measurement::kTraceChannels ? Cached(&InstrumentSettings::channels)[channel]
                                               : measurement::ChannelTransform{};
}

Status CK4NManager::SetChannelOffset(std::size_t channel, double offset) {
  return SetChannel(channel, &measurement::ChannelTransform::offset, offset,
                    std::abs(offset) <= kLargestOffset);
}

Status CK4NManager::SetChannelMultiplier(std::size_t channel, double multiplier) {
  return SetChannel(channel, &measurement::ChannelTransform::multiplier, multiplier, true);
}

Status CK4NManager::SetChannelDivider(std::size_t channel, double divider) {
  return SetChannel(channel, &measurement::ChannelTransform::divider, divider,
                    divider >= kSmallestDivider);
}
