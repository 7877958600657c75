// What the model learns of its instrument at connection.
#include "K4NHardWare/D3THardWare.h"

using namespace k4n;

namespace {

constexpr double kWideSpan = 1e11;                       // Hz, beyond every instrument
constexpr double kNarrowSpan = 4'001'000'000.0;          // Hz, the span for probing the narrow form
constexpr double kFirstClassLimit = 4e9;                 // Hz
constexpr std::uint16_t kFeaturesAtConnection = 0xFFFB;  // all but bit 2

}  // namespace

Status D3THardWare::Initialize() {
  frequency_class_ = 0;
  if (const Status result = Recover(); IsNegative(result)) return result;
  Discard(WriteFeatureMask(kFeaturesAtConnection));  // older instruments have no such mask
  if (const Status result = ReadIdentity(); IsNegative(result)) return result;
  if (const Status result = ProbeFrequencyRange(); result != Status::kOk) return result;

  TriggerElements probe{.value = 255};
  Status result = SetTriggerOutput(0, probe);
  if (result == Status::kInstrumentFormUnknown || result == Status::kInstrumentFormNotUsable) {
    two_trigger_groups_ = false;
    result = Status::kOk;
  }
  pulse_polarity_ = true;
  return result;
}

Status D3THardWare::ProbeFrequencyRange() {
  // WriteParameter returns 0 for every code that is not negative, so the notices tested for here
  // never occur; the tests are kept.
  Parameter form = Parameter::kFrequencyFourElement;
  four_element_frequency_ = true;
  wide_frequency_ = false;
  Status result = ProbeFrequencyForm(form, kWideSpan);
  if (result == Status::kInstrumentRepeat) result = ProbeFrequencyForm(form, kWideSpan);
  if (IsNegative(result) && result != Status::kInstrumentFormUnknown) return result;
  if (result == Status::kInstrumentFormUnknown || result == Status::kInstrumentFormNotUsable) {
    four_element_frequency_ = false;
    wide_frequency_ = true;
    form = Parameter::kFrequencyWide;
    result = ProbeFrequencyForm(form, kWideSpan);
    if (result == Status::kInstrumentFormUnknown) {
      wide_frequency_ = false;
      form = Parameter::kFrequencyNarrow;
      result = ProbeFrequencyForm(form, kNarrowSpan);
    }
  }
  if (!IsAccepted(result)) return result;
  minimum_frequency_ = At(form).GetValue(FrequencyElement::kStart);
  maximum_frequency_ = minimum_frequency_ + At(form).GetValue(FrequencyElement::kStep);
  frequency_class_ = maximum_frequency_ <= kFirstClassLimit ? 1 : 2;
  return Status::kOk;
}

Status D3THardWare::ProbeFrequencyForm(Parameter form, double span) {
  HardWareParametr& parameter = At(form);
  parameter.SetValue(0.0, FrequencyElement::kStart);
  parameter.SetValue(2.0, FrequencyElement::kPoints);
  parameter.SetValue(span, FrequencyElement::kStep);
  if (form == Parameter::kFrequencyFourElement) parameter.SetValue(span, FrequencyElement::kStop);
  return WriteParameter(parameter);
}

Status D3THardWare::QueryInstrumentKind(std::uint32_t& kind) {
  HardWareParametr& parameter = At(Parameter::kInstrumentKind);
  parameter.SetValue(kind, OnlyElement::kValue);
  const Status result = WriteParameter(parameter);
  if (result == Status::kOk) kind = parameter.GetCode(OnlyElement::kValue);
  return result;
}
