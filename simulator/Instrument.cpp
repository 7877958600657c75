#include "simulator/Instrument.h"

#include <algorithm>
#include <cmath>

#include "simulator/InstrumentFiles.h"

namespace simulator {

namespace {

constexpr char kFractionMark = 'A';
constexpr char kIntegerMark = '@';

Message AnswerTo(const Message& request) {
  Message answer;
  answer.command = request.command;
  answer.count = request.count;
  answer.type = request.type;
  answer.sequence = request.sequence;
  return answer;
}

std::int16_t BlockStatus(const InstrumentState& state) {
  if (!state.pll_locked) return status::kPllUnlocked;
  if (!state.erg_good) return status::kErgFault;
  return state.level_settled ? status::kGood : status::kLevelNotSettled;
}

}  // namespace

Instrument::Instrument(const Options& options)
    : options_(options),
      settings_(options),
      signal_path_(options.device, options.noise, options.seed) {}

Message Instrument::Execute(const Message& request) {
  Message answer = AnswerTo(request);
  switch (request.command) {
    case command::kNone:
    case command::kRecover:
      break;
    case command::kWrite:
      answer.status = settings_.Write(request, answer.body);
      break;
    case command::kRead:
      answer.status = Read(request, answer.body);
      break;
    default:
      answer.status = status::kUnknownCommand;
  }
  return answer;
}

std::int16_t Instrument::Read(const Message& request, Bytes& answer) const {
  if (IsFileRead(request)) return ReadFile(options_, request, answer);
  if (IsSerialNumberQuery(request)) return ScrambledSerialNumber(options_, request, answer);
  return settings_.Read(request, answer);
}

Message Instrument::MeasureSweep(const Message& request) {
  Message answer = AnswerTo(request);
  const bool fraction = request.type == kFractionMark;
  answer.type = static_cast<std::uint8_t>(fraction ? kFractionMark : kIntegerMark);
  double scale = fraction ? 256.0 : 1.0;
  if (options_.kind == InstrumentKind::kDetectors) scale *= std::ldexp(1.0, 24) / 5e6;
  if (options_.kind != InstrumentKind::kGenerator) AppendPoints(answer.body, scale);
  InstrumentState& state = settings_.state();
  AppendInteger(answer.body, static_cast<std::uint16_t>(BlockStatus(state)), 2);
  ++state.sweeps;
  return answer;
}

void Instrument::AppendPoints(Bytes& block, double scale) {
  const InstrumentState& state = settings_.state();
  const std::vector<double> frequencies = state.frequency.Values();
  const std::vector<double> levels = state.level.Values();
  const std::size_t points = settings_.SweepPoints();
  block.reserve(points * kChannels * 4 + 2);
  for (std::size_t i = 0; i < points; ++i) {
    SourcePoint point;
    point.frequency = frequencies[i % frequencies.size()];
    if (state.output_enabled) point.level = levels[i / frequencies.size()];
    for (const double reading : signal_path_.Measure(point, state.averaging)) {
      AppendInteger(block, static_cast<std::uint32_t>(RawReading(reading, scale)), 4);
    }
  }
}

SweepPlan Instrument::Plan() const {
  const InstrumentState& state = settings_.state();
  SweepPlan plan;
  if (state.frequency.mode == AxisMode::kFixed && state.level.mode == AxisMode::kFixed) {
    return plan;  // a single point is measured at once
  }
  plan.points = settings_.SweepPoints();
  plan.point_time = std::chrono::nanoseconds(state.dwell) + options_.min_point_time;
  switch (state.trigger_input[0].code) {
    case 1:
      plan.start = SweepPlan::Start::kTrigger;
      break;
    case 2:
    case 3:
      plan.start = SweepPlan::Start::kEachTrigger;
      break;
    default:
      break;
  }
  return plan;
}

}  // namespace simulator
