#include "simulator/Settings.h"

#include <algorithm>
#include <cmath>

#include "simulator/InstrumentFiles.h"

namespace simulator {

namespace {

constexpr std::size_t kIdSize = 2;  // bytes before the elements

namespace id {
constexpr std::uint16_t kFrequency = 0;
constexpr std::uint16_t kKind = 3;
constexpr std::uint16_t kAveraging = 4;
constexpr std::uint16_t kDwell = 5;
constexpr std::uint16_t kTriggerInput = 7;
constexpr std::uint16_t kTriggerOutput = 8;
constexpr std::uint16_t kCompensation = 11;
constexpr std::uint16_t kShortLevel = 12;
constexpr std::uint16_t kIdentity = 15;
constexpr std::uint16_t kReference = 17;
constexpr std::uint16_t kMask = 23;
constexpr std::uint16_t kPulseTrain = 31;
constexpr std::uint16_t kRfButton = 34;
constexpr std::uint16_t kSync = 37;
constexpr std::uint16_t kLevel = 79;
constexpr std::uint16_t kPhaseDelay = 92;
}  // namespace id

bool Always(const Options& /*options*/) { return true; }
bool HasWideFrequency(const Options& options) {
  return options.frequency_form != FrequencyForm::kNarrow;
}
bool HasStopFrequency(const Options& options) {
  return options.frequency_form == FrequencyForm::kFourElement;
}
bool HasTwoGroups(const Options& options) { return options.trigger_groups == 2; }
bool HasPulseModulator(const Options& options) { return options.pulse_modulator; }
bool HasReferenceFrequency(const Options& options) { return options.reference_frequency; }

// One bit for each generation of the power commands.
template <unsigned kMask>
bool PowerVariants(const Options& options) {
  return options.power_variant >= 0 && ((kMask >> options.power_variant) & 1U) != 0;
}

// Frequencies and levels travel as 8, 16, 32 or 48 bits: the settings below fit whatever comes.
template <typename Integer>
Integer Whole(double value) {
  return static_cast<Integer>(value);
}

}  // namespace

const std::span<const Settings::Form> Settings::kForms = [] {
  using S = Settings;
  static constexpr Form kTable[] = {
      // id, elements, bytes an element and fraction, signed, who knows it
      {id::kFrequency, 1, 0x60, false, Always, &S::SetFrequency, &S::GetFrequency},
      {id::kFrequency, 3, 0x40, false, Always, &S::SetFrequency, &S::GetFrequency},
      {id::kFrequency, 3, 0x60, true, HasWideFrequency, &S::SetFrequency, &S::GetFrequency},
      {id::kFrequency, 4, 0x60, true, HasStopFrequency, &S::SetFrequency, &S::GetFrequency},
      {id::kKind, 1, 0x20, false, Always, &S::SetKind, &S::GetKind},
      {id::kAveraging, 1, 0x10, false, Always, &S::SetAveraging, &S::GetAveraging},
      {id::kDwell, 2, 0x40, false, Always, &S::SetDwell, &S::GetDwell},
      {id::kTriggerInput, 5, 0x10, false, Always, &S::SetTrigger, &S::GetTrigger},
      {id::kTriggerInput, 10, 0x10, false, HasTwoGroups, &S::SetTrigger, &S::GetTrigger},
      {id::kTriggerOutput, 5, 0x10, false, Always, &S::SetTrigger, &S::GetTrigger},
      {id::kTriggerOutput, 10, 0x10, false, HasTwoGroups, &S::SetTrigger, &S::GetTrigger},
      {9, 3, 0x20, false, Always, &S::SetUnnamed, &S::GetUnnamed},
      {id::kCompensation, 1, 0x20, false, Always, &S::SetCompensation, &S::GetCompensation},
      {id::kShortLevel, 2, 0x21, true, PowerVariants<0b000011>, &S::SetShortLevel,
       &S::GetShortLevel},
      {id::kShortLevel, 2, 0x42, true, PowerVariants<0b000010>, &S::SetShortLevel,
       &S::GetShortLevel},
      {id::kShortLevel, 4, 0x42, true, PowerVariants<0b000010>, &S::SetShortLevel,
       &S::GetShortLevel},
      {id::kIdentity, 100, 0x10, false, Always, nullptr, &S::GetIdentity},
      {id::kReference, 1, 0x10, false, Always, &S::SetReference, &S::GetReference},
      {id::kReference, 2, 0x40, false, HasReferenceFrequency, &S::SetReference, &S::GetReference},
      {id::kMask, 1, 0x20, false, Always, &S::SetMask, &S::GetMask},
      {27, 3, 0x40, false, Always, &S::SetUnnamed, &S::GetUnnamed},
      {28, 4, 0x10, false, Always, &S::SetUnnamed, &S::GetUnnamed},
      {id::kPulseTrain, 3, 0x40, false, HasPulseModulator, &S::SetPulseHead, &S::GetPulseHead},
      {id::kRfButton, 1, 0x20, false, Always, nullptr, &S::GetRfButton},
      {id::kSync, 3, 0x40, false, Always, &S::SetSync, &S::GetSync},
      {id::kLevel, 5, 0x42, true, PowerVariants<0b010100>, &S::SetLevel, &S::GetLevel},
      {id::kLevel, 7, 0x42, true, PowerVariants<0b010100>, &S::SetLevel, &S::GetLevel},
      {id::kLevel, 8, 0x42, true, PowerVariants<0b010000>, &S::SetLevel, &S::GetLevel},
      {id::kLevel, 5, 0x62, true, PowerVariants<0b101000>, &S::SetLevel, &S::GetLevel},
      {id::kLevel, 7, 0x62, true, PowerVariants<0b101000>, &S::SetLevel, &S::GetLevel},
      {id::kLevel, 8, 0x62, true, PowerVariants<0b100000>, &S::SetLevel, &S::GetLevel},
      {id::kPhaseDelay, 1, 0x42, true, Always, &S::SetPhaseDelay, &S::GetPhaseDelay},
  };
  return std::span<const Form>(kTable);
}();

double RoundTo(double value, double step) {
  return step > 0.0 ? std::round(value / step) * step : value;
}

Settings::Settings(const Options& options) : options_(options) {
  state_.frequency.start = ClampFrequency(options_.min_frequency);
  state_.level.start = ClampLevel(options_.initial_level);
  state_.output_enabled = options_.output_at_start;
  state_.attenuator_mode = options_.attenuator_mode;
}

Settings::FormSearch Settings::FindForm(std::uint16_t id, std::uint8_t count,
                                        std::uint8_t type) const {
  FormSearch search{nullptr, status::kUnknownParameter};
  for (const Form& form : kForms) {
    if (form.id != id || !form.known(options_)) continue;
    if (form.count == count && form.type == type) return {&form, status::kGood};
    search.status = status::kUnknownForm;
  }
  return search;
}

std::int16_t Settings::Write(const Message& request, Bytes& answer) {
  if (request.body.size() < kIdSize) return status::kUnknownForm;
  const std::uint16_t id = ReadWord(request.body, 0);
  if (IsBlock(request, id)) return WriteBlock(request, id, answer);
  const FormSearch search = FindForm(id, request.count, request.type);
  if (search.form == nullptr) return search.status;
  const Form& form = *search.form;
  const auto format = ElementFormat::FromType(form.type, form.is_signed);
  const Values values =
      DecodeElements(std::span<const std::uint8_t>(request.body).subspan(kIdSize), *format);
  if (form.set == nullptr || values.size() < form.count) return status::kUnknownForm;
  if (id == id::kShortLevel && options_.power_variant == 0 && !power_woken_) {
    power_woken_ = true;
    return status::kUnknownForm;
  }
  if (id == id::kKind && values[0] != static_cast<double>(options_.kind)) {
    return status::kUnknownForm;
  }
  (this->*form.set)(form, std::span(values).first(form.count));
  AppendInteger(answer, id, kIdSize);
  AppendElements(answer, *format, (this->*form.get)(form));
  return status::kGood;
}

std::int16_t Settings::Read(const Message& request, Bytes& answer) const {
  if (request.body.size() < kIdSize) return status::kUnknownForm;
  const std::uint16_t id = ReadWord(request.body, 0);
  const FormSearch search = FindForm(id, request.count, request.type);
  if (search.form == nullptr) return search.status;
  if (id == id::kFrequency && !state_.pll_locked) return status::kPllUnlocked;
  if (id == id::kFrequency && !state_.erg_good) return status::kErgFault;
  const Form& form = *search.form;
  AppendInteger(answer, id, kIdSize);
  AppendElements(answer, *ElementFormat::FromType(form.type, form.is_signed),
                 (this->*form.get)(form));
  const bool of_level = id == id::kLevel || id == id::kShortLevel;
  return of_level && !state_.level_settled ? status::kLevelNotSettled : status::kGood;
}

// A client proposes a kind: the instrument confirms its own and refuses every other, whereupon the
// client proposes the next.
void Settings::SetKind(const Form& /*form*/, std::span<const double> /*values*/) {}
Settings::Values Settings::GetKind(const Form& /*form*/) const {
  return {static_cast<double>(options_.kind)};
}

void Settings::SetAveraging(const Form& /*form*/, std::span<const double> values) {
  state_.averaging = Whole<std::uint8_t>(std::clamp(values[0], 1.0, 14.0));
}
Settings::Values Settings::GetAveraging(const Form& /*form*/) const {
  return {static_cast<double>(state_.averaging)};
}

void Settings::SetDwell(const Form& /*form*/, std::span<const double> values) {
  const double step = options_.dwell_resolution;
  const double rounded = RoundTo(values[1], step);
  state_.dwell_selector = Whole<std::uint32_t>(values[0]);
  state_.dwell = Whole<std::uint32_t>(rounded > UINT32_MAX ? rounded - step : rounded);
}
Settings::Values Settings::GetDwell(const Form& /*form*/) const {
  return {static_cast<double>(state_.dwell_selector), static_cast<double>(state_.dwell)};
}

void Settings::SetMask(const Form& /*form*/, std::span<const double> values) {
  state_.feature_mask = Whole<std::uint16_t>(values[0]);
}
Settings::Values Settings::GetMask(const Form& /*form*/) const {
  return {static_cast<double>(state_.feature_mask)};
}

void Settings::SetTrigger(const Form& form, std::span<const double> values) {
  const bool input = form.id == id::kTriggerInput;
  const double last_code = input ? 5 : 6;
  for (std::size_t group = 0; group < values.size() / 5; ++group) {
    const auto elements = values.subspan(5 * group, 5);
    TriggerGroup& target = (input ? state_.trigger_input : state_.trigger_output).at(group);
    // An unknown code leaves the trigger as it is.
    const double code = elements[0] <= last_code ? elements[0] : target.code;
    target = {Whole<std::uint8_t>(code), Whole<std::uint8_t>(elements[1]),
              Whole<std::uint8_t>(elements[2]), Whole<std::uint8_t>(elements[3]),
              Whole<std::uint8_t>(elements[4])};
  }
}
Settings::Values Settings::GetTrigger(const Form& form) const {
  Values values;
  for (const TriggerGroup& group :
       form.id == id::kTriggerInput ? state_.trigger_input : state_.trigger_output) {
    for (const std::uint8_t element :
         {group.code, group.edge, group.width, group.flag, group.last}) {
      values.push_back(element);
    }
  }
  values.resize(form.count);
  return values;
}

void Settings::SetReference(const Form& /*form*/, std::span<const double> values) {
  state_.reference_enabled = values[0] != 0.0;
  if (values.size() > 1) {
    state_.reference_frequency =
        std::clamp(values[1], options_.min_reference_frequency, options_.max_reference_frequency);
  }
}
Settings::Values Settings::GetReference(const Form& form) const {
  Values values{state_.reference_enabled ? 1.0 : 0.0, state_.reference_frequency};
  values.resize(form.count);
  return values;
}

void Settings::SetPhaseDelay(const Form& /*form*/, std::span<const double> values) {
  state_.phase_delay = values[0];
}
Settings::Values Settings::GetPhaseDelay(const Form& /*form*/) const {
  return {state_.phase_delay};
}

void Settings::SetCompensation(const Form& /*form*/, std::span<const double> values) {
  constexpr double kLastMode = 4;
  if (values[0] <= kLastMode) state_.compensation_mode = Whole<std::uint16_t>(values[0]);
}
Settings::Values Settings::GetCompensation(const Form& /*form*/) const {
  return {static_cast<double>(state_.compensation_mode)};
}

void Settings::SetSync(const Form& /*form*/, std::span<const double> values) {
  const auto time = [&](double value) {
    const double step = options_.time_resolution;
    const double rounded = RoundTo(value, step);
    return Whole<std::uint32_t>(rounded > UINT32_MAX ? rounded - step : rounded);
  };
  state_.sync_width = time(values[0]);
  state_.sync_off_time = time(values[1]);
  state_.sync_delay = time(values[2]);
}
Settings::Values Settings::GetSync(const Form& /*form*/) const {
  return {static_cast<double>(state_.sync_width), static_cast<double>(state_.sync_off_time),
          static_cast<double>(state_.sync_delay)};
}

Settings::Values Settings::GetRfButton(const Form& /*form*/) const {
  return {state_.rf_button ? 1.0 : 0.0};
}

Settings::Values Settings::GetIdentity(const Form& /*form*/) const {
  const Bytes text = IdentityText(options_);
  return {text.begin(), text.end()};
}

void Settings::SetUnnamed(const Form& form, std::span<const double> values) {
  state_.unnamed[form.id].assign(values.begin(), values.end());
}
Settings::Values Settings::GetUnnamed(const Form& form) const {
  const auto found = state_.unnamed.find(form.id);
  return found == state_.unnamed.end() ? Values(form.count, 0.0) : found->second;
}

}  // namespace simulator
