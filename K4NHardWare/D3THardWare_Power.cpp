// The power axis. Generations of the instrument know different forms of its parameters; the variant
// number tells which one is spoken.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "K4NHardWare/D3THardWare.h"

using namespace k4n;

namespace {

/// The forms of the parameters that one generation speaks.
struct PowerVariant {
  Parameter level;
  Parameter state;  ///< read for the level state (settled or not)
  std::optional<Parameter> sweep;
};

/// Indexed by the variant number.
constexpr std::array<PowerVariant, 6> kPowerVariants = {{
    {Parameter::kPower0, Parameter::kPower0, std::nullopt},
    {Parameter::kPower1, Parameter::kPower0, Parameter::kPowerSweep1},
    {Parameter::kPower2, Parameter::kPower2, Parameter::kPowerSweep2},
    {Parameter::kPower3, Parameter::kPower3, Parameter::kPowerSweep3},
    {Parameter::kPower2, Parameter::kPower2, Parameter::kPowerSweep4},
    {Parameter::kPower3, Parameter::kPower3, Parameter::kPowerSweep5},
}};

/// True if the instrument does not know the form. Any other refusal, such as an unlocked PLL, says
/// nothing about the form.
bool IsUnknown(Status result) {
  return result == Status::kInstrumentFormUnknown || result == Status::kInstrumentNotSupported;
}

/// The forms with the switch and the level alone.
bool IsSimple(Parameter form) {
  return form == Parameter::kPower0 || form == Parameter::kPower1 ||
         form == Parameter::kPowerSweep1;
}

bool HasStop(Parameter form) {
  return form == Parameter::kPowerSweep4 || form == Parameter::kPowerSweep5;
}

/// Valid for the probed forms only.
bool HasSweep(Parameter form) { return HasStop(form) || form == Parameter::kPowerSweep2; }

void FillLevel(HardWareParametr& parameter, Parameter form, const LevelSettings& settings,
               double level) {
  if (IsSimple(form)) {
    parameter.SetValue(settings.level_control, SimplePowerElement::kLevelControl);
    parameter.SetValue(level, SimplePowerElement::kLevel);
    return;
  }
  parameter.SetValue(settings.level_control, PowerElement::kLevelControl);
  parameter.SetValue(static_cast<double>(settings.atten_mode), PowerElement::kAttenMode);
  parameter.SetValue(settings.further_1, PowerElement::kFurther1);
  parameter.SetValue(settings.further_2, PowerElement::kFurther2);
  parameter.SetValue(level, PowerElement::kLevel);
}

void TakeLevel(const HardWareParametr& parameter, Parameter form, LevelSettings& settings,
               double& level) {
  if (IsSimple(form)) {
    settings.level_control = parameter.GetCode(SimplePowerElement::kLevelControl);
    level = parameter.GetValue(SimplePowerElement::kLevel);
    return;
  }
  settings.level_control = parameter.GetCode(PowerElement::kLevelControl);
  settings.atten_mode = AttenMode{parameter.GetCode(PowerElement::kAttenMode)};
  settings.further_1 = parameter.GetCode(PowerElement::kFurther1);
  settings.further_2 = parameter.GetCode(PowerElement::kFurther2);
  level = parameter.GetValue(PowerElement::kLevel);
}

/// Number of levels of a sweep, limited to the 16 integer bits of the element.
double LevelCount(const StepSettings& sweep) {
  constexpr double kMostLevels = 32767.0;
  const double steps =
      std::trunc(std::fabs(sweep.stop - sweep.start) / std::fabs(sweep.step) + 0.5);
  return sweep.step != 0.0 && steps >= 0.0 ? std::min(steps + 1.0, kMostLevels) : 1.0;
}

}  // namespace

Parameter D3THardWare::LevelParameter() const { return kPowerVariants[power_variant_].level; }

Status D3THardWare::SetOutputLevel(LevelSettings& settings, double& level) {
  if (!power_variant_settled_) {
    const Status probed = ProbePowerVariant(settings, level);
    if (!IsInstrumentCode(probed)) return probed;
  }
  const Parameter form = LevelParameter();
  HardWareParametr& parameter = At(form);
  FillLevel(parameter, form, settings, level);
  const Status result = WriteParameter(parameter);
  if (result == Status::kOk) TakeLevel(parameter, form, settings, level);
  return result;
}

Status D3THardWare::SetPowerSweep(LevelSettings& settings, StepSettings& sweep) {
  const std::optional<Parameter> sweep_form = kPowerVariants[power_variant_].sweep;
  if (!sweep_form) return Status::kRefused;
  const Parameter form = *sweep_form;
  const bool simple = IsSimple(form);
  const std::size_t points_element =
      simple ? std::size_t{SimplePowerElement::kPoints} : std::size_t{PowerElement::kPoints};
  const std::size_t step_element =
      simple ? std::size_t{SimplePowerElement::kStep} : std::size_t{PowerElement::kStep};
  HardWareParametr& parameter = At(form);
  FillLevel(parameter, form, settings, sweep.start);
  parameter.SetValue(LevelCount(sweep), points_element);
  const double size = std::fabs(sweep.step);
  parameter.SetValue(sweep.start > sweep.stop ? -size : size, step_element);
  if (HasStop(form)) parameter.SetValue(sweep.stop, PowerElement::kStop);

  const Status result = WriteParameter(parameter);
  if (result != Status::kOk) return result;
  TakeLevel(parameter, form, settings, sweep.start);
  sweep.step = parameter.GetValue(step_element);
  sweep.stop = HasStop(form)
                   ? parameter.GetValue(PowerElement::kStop)
                   : sweep.start + (parameter.GetValue(points_element) - 1.0) * sweep.step;
  return result;
}

Status D3THardWare::ReadOutputState(LevelSettings& settings, double& level) {
  Parameter form = LevelParameter();
  Status result = ReadParameter(At(form));
  if (!power_variant_settled_) {
    // Before the first level is set the variant is not known yet: try the older forms, too.
    for (const Parameter older : {Parameter::kPower2, Parameter::kPower0}) {
      if (!IsUnknown(result)) break;
      form = older;
      result = ReadParameter(At(form));
    }
  }
  if (!IsNegative(result)) TakeLevel(At(form), form, settings, level);
  return result;
}

Status D3THardWare::ReadLevelState(bool& settled) {
  return ReadStateCode(kPowerVariants[power_variant_].state, Status::kInstrumentLevelNotSettled,
                       settled);
}

/// Probes from the newest level form to the oldest, until one is accepted or the link fails. This
/// settles the variant for the session, unless a form was refused for another reason than being
/// unknown: then the next level setting probes again.
Status D3THardWare::ProbePowerVariant(const LevelSettings& settings, double level) {
  Status result = Status::kOk;
  bool settles = true;
  const auto ends = [&](Parameter form) {
    result = WritePowerProbe(form, settings, level);
    settles = settles && (IsAccepted(result) || IsUnknown(result));
    return IsAccepted(result) || !IsInstrumentCode(result);
  };
  power_variant_ = kVariantUnprobed;
  if (ends(Parameter::kPower3)) {
    if (IsAccepted(result)) result = ProbeWideSweep(settings, level);
  } else if (ends(Parameter::kPower2)) {
    if (IsAccepted(result)) result = ProbeNarrowSweep(settings, level);
  } else if (ends(Parameter::kPower0)) {
    if (IsAccepted(result)) power_variant_ = 1;
  } else if (ends(Parameter::kPower0)) {
    // Kept: both tries write the 16-bit form, so that an instrument is taken for variant 0 only
    // when it refuses the first and accepts the second.
    if (IsAccepted(result)) power_variant_ = 0;
  }
  power_variant_settled_ = settles && IsInstrumentCode(result);
  return result;
}

Status D3THardWare::ProbeWideSweep(const LevelSettings& settings, double level) {
  const Status result = WritePowerProbe(Parameter::kPowerSweep5, settings, level);
  if (IsAccepted(result) && IsUsable(Parameter::kPowerSweep5)) power_variant_ = 5;
  return result;
}

Status D3THardWare::ProbeNarrowSweep(const LevelSettings& settings, double level) {
  Status result = WritePowerProbe(Parameter::kPowerSweep4, settings, level);
  if (IsAccepted(result) && IsUsable(Parameter::kPowerSweep4)) {
    power_variant_ = 4;
    return result;
  }
  if (result == Status::kInstrumentFormUnknown) {
    result = WritePowerProbe(Parameter::kPowerSweep2, settings, level);
    if (!IsAccepted(result) || !IsUsable(Parameter::kPowerSweep2)) return result;
  }
  power_variant_ = 2;
  return result;
}

Status D3THardWare::WritePowerProbe(Parameter form, const LevelSettings& settings, double level) {
  HardWareParametr& parameter = At(form);
  FillLevel(parameter, form, settings, level);
  if (HasSweep(form)) {
    parameter.SetValue(1.0, PowerElement::kPoints);
    parameter.SetValue(0.0, PowerElement::kStep);
  }
  if (HasStop(form)) parameter.SetValue(level, PowerElement::kStop);
  return WriteParameter(parameter);
}

bool D3THardWare::IsUsable(Parameter form) {
  return At(form).status() != ToCode(Status::kInstrumentFormNotUsable);
}
