// The settings of one transaction each.
#include <algorithm>
#include <cmath>

#include "K4NHardWare/D3THardWare.h"

using namespace k4n;

namespace {

constexpr std::int32_t kSmallestAveraging = 1;
constexpr std::int32_t kLargestAveraging = 14;
constexpr double kDwellScale = 1000.0;

}  // namespace

Status D3THardWare::SetDwell(double& nanoseconds) {
  HardWareParametr& parameter = At(Parameter::kDwell);
  parameter.SetValue(0.0, DwellElement::kSelector);
  return WriteElements(parameter, {{DwellElement::kTime, &nanoseconds}});
}

Status D3THardWare::SetDwellThousands(double& thousands) {
  double time = thousands * kDwellScale;
  const Status result = SetDwell(time);
  if (result == Status::kOk) thousands = time / kDwellScale;
  return result;
}

Status D3THardWare::WriteFeatureMask(std::uint16_t mask) {
  HardWareParametr& parameter = At(Parameter::kFeatureMask);
  parameter.SetValue(mask, OnlyElement::kValue);
  return WriteParameter(parameter);
}

Status D3THardWare::SetAveraging(std::int32_t& factor, const AveragingFeatures& features) {
  std::uint32_t mask = 0xFFFF;
  if (features.clear_bit_2) mask &= ~(1U << 2);
  if (!features.bit_3) mask &= ~(1U << 3);
  if (!features.bit_4) mask &= ~(1U << 4);
  if (!features.bit_5) mask &= ~(1U << 5);
  if (const Status failed = WriteFeatureMask(static_cast<std::uint16_t>(mask));
      failed != Status::kOk) {
    return failed;
  }
  double value = std::clamp(factor, kSmallestAveraging, kLargestAveraging);
  const Status result = WriteElements(At(Parameter::kAveraging), {{OnlyElement::kValue, &value}});
  if (result == Status::kOk) factor = static_cast<std::int32_t>(value);
  return result;
}

Status D3THardWare::SetTriggerInput(unsigned group, TriggerElements& elements) {
  return WriteTriggerGroup(Parameter::kTriggerInput, Parameter::kTriggerInputTwoGroups, group,
                           elements);
}

Status D3THardWare::SetTriggerOutput(unsigned group, TriggerElements& elements) {
  return WriteTriggerGroup(Parameter::kTriggerOutput, Parameter::kTriggerOutputTwoGroups, group,
                           elements);
}

Status D3THardWare::WriteTriggerGroup(Parameter one_group, Parameter two_groups, unsigned group,
                                      TriggerElements& elements) {
  if (!two_trigger_groups_ && group != 0) return Status::kOk;
  HardWareParametr& parameter = At(two_trigger_groups_ ? two_groups : one_group);
  if (two_trigger_groups_) {
    // Read first, so that the other line keeps its setting.
    if (const Status failed = ReadParameter(parameter); IsNegative(failed)) return failed;
  }
  const std::size_t first = std::size_t{group} * TriggerElement::kGroupSize;
  parameter.SetValue(elements.code, first + TriggerElement::kCode);
  parameter.SetValue(elements.edge ? 1.0 : 0.0, first + TriggerElement::kEdge);
  parameter.SetValue(elements.value, first + TriggerElement::kValue);
  parameter.SetValue(elements.flag, first + TriggerElement::kFlag);
  parameter.SetValue(elements.last, first + TriggerElement::kLast);
  const Status result = WriteParameter(parameter);
  if (result != Status::kOk) return result;
  elements.code = parameter.GetCode(first + TriggerElement::kCode);
  elements.edge = parameter.GetCode(first + TriggerElement::kEdge) != 0;
  elements.value = static_cast<std::uint8_t>(parameter.GetCode(first + TriggerElement::kValue));
  elements.flag = parameter.GetCode(first + TriggerElement::kFlag);
  elements.last = parameter.GetCode(first + TriggerElement::kLast);
  return result;
}

Status D3THardWare::SetSyncGenerator(double& width, double& off_time, double& delay) {
  return WriteElements(At(Parameter::kSyncGenerator), {{SyncElement::kWidth, &width},
                                                       {SyncElement::kOffTime, &off_time},
                                                       {SyncElement::kDelay, &delay}});
}

Status D3THardWare::SetExternalReference(bool& enabled, double& frequency) {
  double on = enabled ? 1.0 : 0.0;
  Status result = WriteElements(
      At(Parameter::kExternalReference),
      {{ReferenceElement::kEnabled, &on}, {ReferenceElement::kFrequency, &frequency}});
  if (result == Status::kInstrumentFormUnknown) {
    result =
        WriteElements(At(Parameter::kExternalReferenceShort), {{ReferenceElement::kEnabled, &on}});
  }
  if (result == Status::kOk) enabled = on != 0.0;
  return result;
}

Status D3THardWare::SetPhaseDelay(double& value) {
  return WriteElements(At(Parameter::kPhaseDelay), {{OnlyElement::kValue, &value}});
}

Status D3THardWare::SetCompensationMode(std::uint32_t& mode) {
  HardWareParametr& parameter = At(Parameter::kCompensationMode);
  parameter.SetValue(mode, OnlyElement::kValue);
  const Status result = WriteParameter(parameter);
  if (result == Status::kOk) mode = parameter.GetCode(OnlyElement::kValue);
  return result;
}

Status D3THardWare::ReadRfButton(bool& pressed) {
  HardWareParametr& parameter = At(Parameter::kRfButton);
  const Status result = ReadParameter(parameter);
  if (!IsNegative(result)) pressed = parameter.GetCode(OnlyElement::kValue) != 0;
  return result;
}

Status D3THardWare::ReadPllState(bool& locked) {
  return ReadStateCode(Parameter::kFrequencyNarrow, Status::kInstrumentPllUnlocked, locked);
}

Status D3THardWare::ReadErgState(bool& good) {
  return ReadStateCode(Parameter::kFrequencyNarrow, Status::kInstrumentErgFault, good);
}

Status D3THardWare::ReadStateCode(Parameter parameter, Status bad_code, bool& good) {
  const Status result = ReadParameter(At(parameter));
  good = result != bad_code;
  return good ? result : Status::kOk;
}

Status D3THardWare::WritePulseTrainFixed(std::array<std::uint32_t, 3>& elements) {
  HardWareParametr& parameter = At(Parameter::kPulseTrainFixed);
  for (std::size_t i = 0; i < elements.size(); ++i) parameter.SetValue(elements[i], i);
  const Status result = WriteParameter(parameter);
  if (result != Status::kOk) return result;
  for (std::size_t i = 0; i < elements.size(); ++i) elements[i] = parameter.GetCode(i);
  return result;
}

Status D3THardWare::WriteSwitchSetting(bool& enabled, std::uint32_t& value) {
  HardWareParametr& parameter = At(Parameter::kSwitchSetting);
  parameter.SetValue(enabled ? 1.0 : 0.0, SwitchElement::kEnabled);
  parameter.SetValue(0.0, SwitchElement::kZero);
  parameter.SetValue(value, SwitchElement::kValue);
  const Status result = WriteParameter(parameter);
  if (result != Status::kOk) return result;
  enabled = parameter.GetCode(SwitchElement::kEnabled) != 0;
  value = parameter.GetCode(SwitchElement::kValue);
  return result;
}

Status D3THardWare::WriteScaledSetting(double& megahertz, std::uint32_t& number, double& value) {
  constexpr double kMega = 1e6;
  constexpr double kValueSteps = 256.0;
  constexpr double kSixteenBits = 65536.0;
  HardWareParametr& parameter = At(Parameter::kScaledSetting);
  parameter.SetValue(megahertz * kMega, ScaledElement::kFrequency);
  parameter.SetValue(number, ScaledElement::kNumber);
  // The value travels as 16 bits, negative ones as their two's complement.
  const double steps = std::fmod(std::trunc(value * kValueSteps), kSixteenBits);
  parameter.SetValue(steps < 0.0 ? steps + kSixteenBits : steps, ScaledElement::kValue);
  const Status result = WriteParameter(parameter);
  if (result != Status::kOk) return result;
  megahertz = parameter.GetValue(ScaledElement::kFrequency) / kMega;
  number = parameter.GetCode(ScaledElement::kNumber);
  value = static_cast<std::int16_t>(parameter.GetCode(ScaledElement::kValue)) / kValueSteps;
  return result;
}

Status D3THardWare::WriteFixedConfiguration(bool flag) {
  static constexpr std::array<double, 3> kFixed = {0.0, 5.0, 3.0};
  HardWareParametr& parameter = At(Parameter::kFixedConfiguration);
  parameter.SetValue(flag ? 3.0 : 2.0, 0);
  for (std::size_t i = 0; i < kFixed.size(); ++i) parameter.SetValue(kFixed[i], i + 1);
  return WriteParameter(parameter);
}
