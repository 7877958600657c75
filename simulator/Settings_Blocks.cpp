// Lists and pulse trains: they come in chunks of a fixed part, an offset, a count and the entries.
#include <algorithm>
#include <cmath>

#include "simulator/Settings.h"

namespace simulator {

namespace {

constexpr std::uint16_t kFrequencyList = 2;
constexpr std::uint16_t kFrequencyTable = 26;
constexpr std::uint16_t kPulseTrain = 31;
constexpr std::uint16_t kLevelList = 76;
constexpr std::size_t kMaxPulses = 4096;

// A chunk's elements taken apart. `fixed` is the element count of the header.
struct Chunk {
  std::vector<double> values;
  std::size_t fixed = 0;
  std::size_t offset = 0;
  std::size_t count = 0;  // entries
  std::size_t per_entry = 1;

  [[nodiscard]] std::span<double> Entry(std::size_t index) {
    return std::span(values).subspan(fixed + 2 + index * per_entry, per_entry);
  }
  void SetStored(std::size_t stored) { values[fixed + 1] = static_cast<double>(stored); }
};

// False for a chunk that tells of entries it does not hold, or that would leave a gap in what came
// before it.
bool TakeApart(const Message& request, const ElementFormat& format, std::size_t per_entry,
               std::size_t held, Chunk& chunk) {
  chunk.values = DecodeElements(std::span<const std::uint8_t>(request.body).subspan(2), format);
  chunk.fixed = request.count;
  chunk.per_entry = per_entry;
  if (chunk.values.size() < chunk.fixed + 2) return false;
  const double offset = chunk.values[chunk.fixed];
  const double count = chunk.values[chunk.fixed + 1];
  const std::size_t room = (chunk.values.size() - chunk.fixed - 2) / per_entry;
  if (offset < 0.0 || offset > static_cast<double>(held) || count < 0.0 ||
      count > static_cast<double>(room)) {
    return false;
  }
  chunk.offset = static_cast<std::size_t>(offset);
  chunk.count = static_cast<std::size_t>(count);
  chunk.values.resize(chunk.fixed + 2 + chunk.count * per_entry);
  return true;
}

void AppendAnswer(Bytes& answer, std::uint16_t id, const ElementFormat& format,
                  std::span<const double> values) {
  AppendInteger(answer, id, 2);
  AppendElements(answer, format, values);
}

}  // namespace

// The head of the pulse train alone, without a chunk behind it, is a parameter like any other.
bool Settings::IsBlock(const Message& request, std::uint16_t id) {
  constexpr std::size_t kPulseHead = 2 + 3 * 4;  // bytes
  return id == kFrequencyList || id == kLevelList || id == kFrequencyTable ||
         (id == kPulseTrain && request.body.size() > kPulseHead);
}

std::int16_t Settings::WriteBlock(const Message& request, std::uint16_t id, Bytes& answer) {
  switch (id) {
    case kPulseTrain:
      return options_.pulse_modulator ? WritePulses(request, answer) : status::kUnknownParameter;
    case kFrequencyTable:
      return WriteFrequencyTable(request, id, answer);
    default:
      return WriteList(request, id, answer);
  }
}

std::int16_t Settings::WriteList(const Message& request, std::uint16_t id, Bytes& answer) {
  const bool of_levels = id == kLevelList;
  const std::uint8_t type = of_levels ? 0x42 : 0x60;
  const std::size_t fixed = of_levels ? 4 : 0;
  const ElementFormat format = *ElementFormat::FromType(type, of_levels);
  Axis& axis = of_levels ? state_.level : state_.frequency;
  Chunk chunk;
  if (request.type != type || request.count != fixed ||
      !TakeApart(request, format, 1, axis.list.size(), chunk)) {
    return status::kUnknownForm;
  }
  if (of_levels) {
    state_.output_enabled = chunk.values[0] != 0.0;
    SetAttenuatorMode(chunk.values[1]);
    state_.level_settings = {chunk.values[2], chunk.values[3]};
    chunk.values[0] = state_.output_enabled ? 1.0 : 0.0;
    chunk.values[1] = state_.attenuator_mode;
  }
  axis.mode = AxisMode::kList;
  axis.list.resize(chunk.offset);
  for (std::size_t i = 0; i < chunk.count && axis.list.size() < kMaxPoints; ++i) {
    double& value = chunk.Entry(i)[0];
    value = of_levels ? ClampLevel(value) : ClampFrequency(value);
    axis.list.push_back(value);
  }
  chunk.SetStored(axis.list.size() - chunk.offset);
  AppendAnswer(answer, id, format, chunk.values);
  return status::kGood;
}

// Mode (2 on, 0 off), source (3 internal, 2 external) and, in the newer form, inverse.
void Settings::SetPulseHead(std::span<const double> values) {
  PulseTrain& train = state_.pulses;
  train.mode = values[0] == 2.0 ? 2 : 0;
  if (values[1] == 2.0 || values[1] == 3.0) train.source = static_cast<std::uint32_t>(values[1]);
  if (values.size() > 2) train.inverse = values[2] != 0.0;
}
void Settings::SetPulseHead(const Form& /*form*/, std::span<const double> values) {
  SetPulseHead(values);
}
Settings::Values Settings::GetPulseHead(const Form& /*form*/) const {
  const PulseTrain& train = state_.pulses;
  return {static_cast<double>(train.mode), static_cast<double>(train.source),
          train.inverse ? 1.0 : 0.0};
}

std::int16_t Settings::WritePulses(const Message& request, Bytes& answer) {
  const ElementFormat format = *ElementFormat::FromType(0x40, false);
  Chunk chunk;
  if (request.type != 0x40 || request.count < 2 || request.count > 3 ||
      !TakeApart(request, format, 2, state_.pulses.pulses.size(), chunk)) {
    return status::kUnknownForm;
  }
  SetPulseHead(std::span(chunk.values).first(chunk.fixed));
  const Values head{static_cast<double>(state_.pulses.mode),
                    static_cast<double>(state_.pulses.source), state_.pulses.inverse ? 1.0 : 0.0};
  std::copy_n(head.begin(), chunk.fixed, chunk.values.begin());
  PulseTrain& train = state_.pulses;
  const auto whole = [](double value) { return static_cast<std::uint32_t>(value); };
  const double step = options_.time_resolution;
  const double longest = std::floor(UINT32_MAX / std::max(step, 1.0)) * std::max(step, 1.0);
  train.pulses.resize(chunk.offset);
  for (std::size_t i = 0; i < chunk.count && train.pulses.size() < kMaxPulses; ++i) {
    const std::span<double> pair = chunk.Entry(i);
    // A train that runs has no pulse shorter than one step; one that is switched off may.
    pair[0] = std::clamp(RoundTo(pair[0], step), train.mode == 2 ? step : 0.0, longest);
    pair[1] = std::min(RoundTo(pair[1], step), longest);
    train.pulses.push_back({whole(pair[0]), whole(pair[1])});
  }
  chunk.SetStored(train.pulses.size() - chunk.offset);
  AppendAnswer(answer, kPulseTrain, format, chunk.values);
  return status::kGood;
}

std::int16_t Settings::WriteFrequencyTable(const Message& request, std::uint16_t id,
                                           Bytes& answer) {
  if (request.type != 0x21) return status::kUnknownForm;
  const ElementFormat format = *ElementFormat::FromType(0x21, true);
  std::vector<double>& values = state_.unnamed[id];
  values = DecodeElements(std::span<const std::uint8_t>(request.body).subspan(2), format);
  AppendAnswer(answer, id, format, values);
  return status::kGood;
}

}  // namespace simulator
