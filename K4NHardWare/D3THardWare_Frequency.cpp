// The frequency axis.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "K4NHardWare/D3THardWare.h"

using namespace k4n;

namespace {

/// Number of points from `start` to `stop`; 1 when there is no step. Kept: a step that points away
/// from `stop` gives a count below 1, which the instrument refuses or corrects.
double PointCount(double start, double stop, double step) {
  constexpr double kLimit = 2147483647.0;
  if (step == 0.0) return 1.0;
  const double steps = std::trunc((stop - start) / step + 0.5);
  return std::clamp(steps, -kLimit, kLimit - 1.0) + 1.0;
}

}  // namespace

double D3THardWare::ClampFrequency(double frequency) const {
  return std::min(std::max(minimum_frequency_, frequency), maximum_frequency_);
}

Status D3THardWare::SetCwFrequency(double& frequency) {
  HardWareParametr parameter({.identifier = 0, .element_count = 1, .element_size = 6});
  double whole = std::trunc(std::fabs(ClampFrequency(frequency)));
  const Status result = WriteElements(parameter, {{OnlyElement::kValue, &whole}});
  if (result == Status::kOk) frequency = whole;
  return result;
}

Status D3THardWare::SetFrequencySweep(StepSettings& sweep) {
  if (four_element_frequency_ && wide_frequency_) return Status::kRefused;
  const double first = std::max(0.0, ClampFrequency(sweep.start));
  const double last = std::max(0.0, ClampFrequency(sweep.stop));
  const double span = maximum_frequency_ - minimum_frequency_;
  const double spacing = std::copysign(std::min(span, std::fabs(sweep.step)), sweep.step);

  double points = PointCount(first, last, spacing);
  double whole_start = std::trunc(first);
  double whole_step =
      points >= 2.0 ? std::trunc(std::fabs((last - whole_start) / (points - 1.0))) : 0.0;
  if (first > last) whole_step = -whole_step;
  double end = last;

  Status result = Status::kOk;
  if (four_element_frequency_) {
    result = WriteElements(At(Parameter::kFrequencyFourElement),
                           {{FrequencyElement::kStart, &whole_start},
                            {FrequencyElement::kPoints, &points},
                            {FrequencyElement::kStep, &whole_step},
                            {FrequencyElement::kStop, &end}});
  } else {
    const Parameter form =
        wide_frequency_ ? Parameter::kFrequencyWide : Parameter::kFrequencyNarrow;
    result = WriteElements(At(form), {{FrequencyElement::kStart, &whole_start},
                                      {FrequencyElement::kPoints, &points},
                                      {FrequencyElement::kStep, &whole_step}});
    end = whole_start + (points - 1.0) * whole_step;
  }
  if (result != Status::kOk) return result;
  sweep = {.start = whole_start, .stop = end, .step = whole_step};
  return result;
}
